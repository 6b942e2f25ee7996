#pragma once

class GroundStation;
class HeardTimes;
class mb;
struct SkyHearing;

/// What the sky window asks about the frames that this station has heard. All outlive the window.
SkyHearing HearingOfSky(const GroundStation& ground, const HeardTimes& heard, const mb& messages);
