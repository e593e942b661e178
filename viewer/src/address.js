// A moment in the page's address: `#t=12.5`, in seconds of the scene, and `&take=NAME` where there are
// several takes.

export function readAddress() {
    const words = new URLSearchParams(location.hash.slice(1));
    const seconds = Number(words.get('t') || NaN);
    return { seconds: Number.isFinite(seconds) ? seconds : null, take: words.get('take') };
}

export function addressOf(seconds, take) {
    const words = `#t=${Number(seconds.toFixed(4))}`;
    return take === null ? words : `${words}&take=${encodeURIComponent(take)}`;
}

// Has the address bar tell it, and gives the whole address. Nothing is added to the history, and
// nobody is told of a change.
export function showAddress(words) {
    if (location.hash !== words) history.replaceState(null, '', words);
    return location.href;
}
