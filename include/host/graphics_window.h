#pragma once

#include <cstdint>

#include "host/host_api.h"
#include "host/matrix3.h"

// A place on the screen, in pixels from the upper left corner.
struct IPoint2 {
    int x = 0;
    int y = 0;
};

// Bits of the render limits: how a window draws what comes next.
inline constexpr std::uint32_t GW_WIREFRAME = 0x1;   // edges
inline constexpr std::uint32_t GW_ILLUM = 0x2;       // faces, lit
inline constexpr std::uint32_t GW_FLAT = 0x4;        // one shade for each face
inline constexpr std::uint32_t GW_SPECULAR = 0x8;    // faces, smooth between vertices
inline constexpr std::uint32_t GW_Z_BUFFER = 0x20;   // nearer things hide farther ones
inline constexpr std::uint32_t GW_BACKCULL = 0x100;  // faces that look away are left out

// Colour types of GraphicsWindow::setColor.
inline constexpr int LINE_COLOR = 0;
inline constexpr int FILL_COLOR = 1;

// How a surface looks; a value of the host's.
struct Material {
    float shininess = 0;
};

// What a viewport draws into. Limits, transform and colours stay as they were last set.
class HOST_API GraphicsWindow {
  public:
    virtual std::uint32_t getRndLimits() = 0;
    virtual void setRndLimits(std::uint32_t limits) = 0;
    virtual Material* getMaterial() = 0;  // the window's own
    virtual void setTransform(const Matrix3& objectToWorld) = 0;
    virtual void setColor(int type, float red, float green, float blue) = 0;

    virtual ~GraphicsWindow();
};

// A view of the scene, handed to what draws or hits there. It is good for the call.
class HOST_API ViewExp {
  public:
    virtual GraphicsWindow* getGW() = 0;

    virtual ~ViewExp();
};

// Types of a hit test.
inline constexpr int HITTYPE_POINT = 1;  // one place on the screen
inline constexpr int HITTYPE_RECT = 2;   // two opposite corners

// Flags of BaseObject::HitTest.
inline constexpr int HIT_ABORTONHIT = 8;  // the first hit is enough

// Where on the screen a hit counts.
struct HitRegion {
    int type = HITTYPE_POINT;
    int crossing = 0;  // of a rectangle: touching it is enough; else all of the object is inside
    int epsilon = 0;   // pixels around a point
    IPoint2 corners[2];
};

// `points` is one place, or two for a rectangle.
HOST_API void MakeHitRegion(HitRegion& region, int type, int crossing, int epsilon,
                            const IPoint2* points);
