#pragma once

#include <cstdint>
#include <utility>

#include "host/types.h"

// The host counts time in ticks, 32 bits signed; the Core counts seconds in doubles. Seconds become
// ticks by truncation toward zero; beyond the range of ticks they saturate, and a NaN is tick 0.

std::int32_t TruncatedToInt32(double value);

// The product of the host's two numbers, at this moment.
int TicksPerSecond();

// The tick of a snapshot, and of everything else that stands on a node: ticks per frame × (frame
// rate × seconds), in this order, which can round otherwise than HostTicks at the edge of a tick.
TimeValue SnapshotTicks(double seconds);

// The tick of the current time and of the ends of the animation range: seconds × TicksPerSecond().
TimeValue HostTicks(double seconds);

double SecondsOf(TimeValue ticks);

double CurrentSeconds();
void SetCurrentSeconds(double seconds);

// First and last second of the animation range.
std::pair<double, double> AnimationRangeSeconds();
void SetAnimationRangeSeconds(double first, double last);
