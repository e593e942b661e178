// The present time of a take, in frames from its first one, and how it goes on.

export class Clock {
    constructor(take) {
        this.speed = 1;
        this.isPlaying = false;
        this.take = take;
        this.frame = 0;
    }

    get last() { return this.take.frames - 1; }
    get seconds() { return this.take.startSeconds + this.frame * this.take.frameSeconds; }

    goToFrame(frame) { this.frame = Math.min(Math.max(frame, 0), this.last); }

    // What is as near to a frame as seconds can be written is that frame.
    goToSeconds(seconds) {
        const frame = (seconds - this.take.startSeconds) / this.take.frameSeconds;
        const whole = Math.round(frame);
        this.goToFrame(Math.abs(frame - whole) < 0.02 ? whole : frame);
    }

    // From wherever it is to the next whole frame on that side.
    step(frames) {
        const from = frames > 0 ? Math.floor(this.frame + 1e-6) : Math.ceil(this.frame - 1e-6);
        this.goToFrame(from + frames);
    }

    // Behind the last frame the first one follows.
    advance(seconds) {
        if (!this.isPlaying) return;
        const frame = this.frame + seconds * this.speed / this.take.frameSeconds;
        this.frame = frame > this.last ? (this.last > 0 ? frame % this.last : 0) : frame;
    }
}
