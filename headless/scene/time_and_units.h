#pragma once

#include "host/interval.h"
#include "host/time.h"

namespace headless {

// The scene's time: what a tick is, the current time, the animation range. Changes of the range are
// undoable. The current time is where somebody looks and no part of the scene: no undo moves it but
// that of a guest's own record.

// Time 0 and a range of a hundred frames.
void StartTimeline(int frameRate, int ticksPerFrame);

// Whether ticks can be counted so; what a timeline works out of the two is then a TimeValue.
bool IsClock(int frameRate, int ticksPerFrame);

// Everything at once, as a stored scene has it; not undoable. The callbacks are told by TellTime.
void RestoreTimeline(int frameRate, int ticksPerFrame, Interval range, TimeValue now);
void TellTime();

TimeValue CurrentTime();
void MoveTime(TimeValue t);
Interval AnimationRange();
void SetAnimationRange(Interval range);  // an empty one is passed over

// Each is told once of every change of the current time, in the order of registration, and may take
// itself or others out while it is told.
void AddTimeCallback(TimeChangeCallback* callback);
void RemoveTimeCallback(TimeChangeCallback* callback);
void ForgetTimeCallbacks();

// The size of a host unit: `scale` units of `type`, as numbered in host/units.h.

void SetMasterUnits(int type, float scale);

bool IsUnitType(int type);
double MetresPerUnit(int type, float scale);

}  // namespace headless
