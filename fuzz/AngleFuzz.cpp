// Angle arithmetic on arbitrary doubles: no trap, no undefined behaviour.
#include <zbBase/numeric/CzbDE.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    double v[6] = {0, 0, 0, 0, 0, 0};
    std::memcpy(v, data, size < sizeof v ? size : sizeof v);
    zbBase::CzbDE de;
    double az = 0, el = 0;
    de.GetAngleClosing(v[0], v[1], 0);
    de.GetCheckAngleRange(v[0], v[1], v[2]);
    zbBase::CzbDE::GetAngle180(v[3]);
    zbBase::CzbDE::getHeading(v[4], v[5]);
    de.getAngle3d(v[0], v[1], v[2], v[3], v[4], v[5], &az, &el);
    de.axisrotate(&az, &el, &v[0], v[0], v[1], v[2], v[3], v[4], v[5], v[0], v[1], v[2]);
    return 0;
}
