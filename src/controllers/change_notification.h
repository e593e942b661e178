#pragma once

class ReferenceTarget;

// Tells whatever depends on `changed` that it has changed, for all time and in every part.
void AnnounceChange(ReferenceTarget& changed);
