// Geodesy and plane geometry on arbitrary doubles: no trap, no undefined behaviour, and the
// footpoint iteration always ends.
#include <zbBase/geodesy/CzbCoordinate.h>
#include <zbBase/geodesy/CzbWGS84.h>
#include <zbBase/numeric/CzbMath.h>
#include <zbBase/numeric/CzbMatrix4x4.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    double v[8] = {0, 0, 0, 0, 0, 0, 0, 0};
    std::memcpy(v, data, size < sizeof v ? size : sizeof v);
    double a = 0, b = 0;
    int d = 0, m = 0;
    char h = 0;
    CzbWGS84::Bessel2TM(v[0], v[1], v[2], v[3], v[4], &a, &b);
    CzbWGS84::_Bessel2TM(v[1], v[2], v[3], v[4], &a, &b);
    CzbWGS84::_TM2Bessel(v[5], v[6], v[3], v[4], &a, &b);
    CzbWGS84::_TM2Bessel(a, b, v[3], v[4], &a, &b);
    CzbWGS84::getBearing(v[0], v[1], v[2], v[3]);
    CzbWGS84::getRangePosition(v[4], v[5], v[6], v[7], &a, &b);
    zbBase::CzbCoordinate::GetDgreetoDMS(v[0], &d, &m, &a);
    zbBase::CzbCoordinate::GetMakeDegree180(v[1]);
    zbBase::CzbCoordinate::GetMakeDegree90(v[2]);
    zbBase::CzbCoordinate::GetMakeDMS180(d, &m, &h);
    zbBase::CzbCoordinate::GetMakeDMS90(m, &d, &h);

    zbBase::CzbMath math;
    zbBase::zbVector2d out;
    zbBase::zbVector2d poly[4] = {{v[0], v[1]}, {v[2], v[3]}, {v[4], v[5]}, {v[6], v[7]}};
    math.GetAngle3Point(v[0], v[1], v[2], v[3], v[4], v[5]);
    math.GetIntersectPoint(poly[0], poly[1], poly[2], poly[3], &out);
    math.GetIsPointOnPolygon(out, poly, size % 5);
    math.GetLineOnPoint({v[0], v[1], v[2]}, {v[3], v[4], v[5]}, {v[6], v[7], v[0]});
    math.GetRotatePosition(poly[0], poly[1], v[2]);

    zbBase::CzbMatrix4x4 mx;
    mx.SetRotateH(v[0]);
    mx.SetRotateP(v[1]);
    mx.SetTransform(v[2], v[3], v[4]);
    float fx = static_cast<float>(size), fy = 1.0f, fz = 2.0f;
    mx.MakeResult(&fx, &fy, &fz);
    return 0;
}
