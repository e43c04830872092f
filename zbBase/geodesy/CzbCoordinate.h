// CzbCoordinate: degree-minute-second conversions and the wrapping of angles into longitude
// and latitude form.
//
// GetDgreetoDMS carries minutes and seconds in single precision (about 0.00023 seconds near
// 60 minutes) and never carries between the parts, so a value just below a whole minute can
// come back with seconds near 60 or even 60 minutes. The wraps truncate the number of turns
// through a 32-bit int and hold for angles up to about 3.8e11 degrees; beyond that the result
// is meaningless (but defined). No state; any thread may call any operation.
#pragma once

#include "zbBase/numeric/zbExport.h"

namespace zbBase {

class ZB_API CzbCoordinate {
public:
    CzbCoordinate() = default;
    CzbCoordinate(const CzbCoordinate&) = default;
    CzbCoordinate& operator=(const CzbCoordinate&) = default;
    ~CzbCoordinate() = default;

    // degrees + minutes / 60 + seconds / 3600; a negative degree count is no sign for the
    // whole ((-10, 30, 0) gives -9.5).
    static double GetDMStoDgree(int degrees, int minutes, double seconds);
    // The sign stays on the degrees alone (and is lost when they are 0).
    static void GetDgreetoDMS(double value, int* degrees, int* minutes, double* seconds);
    // Wraps into -180 to 180, both ends possible.
    static double GetMakeDegree180(double value);
    // Wraps with period 180 into -90 to 90 (100 gives -80); not a reflection at the pole.
    static double GetMakeDegree90(double value);
    // Whole degrees wrapped as a longitude: magnitude and 'E' or 'W' (one char, no terminator).
    static void GetMakeDMS180(int value, int* degrees, char* hemisphere);
    // Whole degrees wrapped as a latitude: magnitude and 'N' or 'S' (one char, no terminator).
    static void GetMakeDMS90(int value, int* degrees, char* hemisphere);
};

} // namespace zbBase
