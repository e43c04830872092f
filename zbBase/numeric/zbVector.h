// Vector and point value types: zbVector2d, zbVector3d (double), qwVector3f (float) and
// qwPoint (int).
//
// Plain public fields that hosts read and write; arrays of them are laid end to end. Note the
// asymmetries the library's callers rely on:
//  - operator- on zbVector3d and qwVector3f also stores the difference into the left operand;
//    on zbVector2d and qwPoint it leaves both operands alone.
//  - Mag() is the length in the x-y plane only; getLength() is the full length.
//  - Normalize() of a zero vector leaves it zero.
//  - qwPoint adds and subtracts with 32-bit wrap-around.
#pragma once

#include "zbBase/numeric/zbExport.h"

namespace zbBase {

class ZB_API zbVector2d {
public:
    double x;
    double y;

    zbVector2d() noexcept;
    zbVector2d(double x, double y);
    zbVector2d(const zbVector2d& other) = default;
    zbVector2d& operator=(const zbVector2d& other);

    void set(double x, double y);
    zbVector2d operator+(const zbVector2d& other);
    zbVector2d operator-(const zbVector2d& other);
    zbVector2d& operator+=(const zbVector2d& other);
    zbVector2d& operator-=(const zbVector2d& other);
};

class ZB_API zbVector3d {
public:
    double x;
    double y;
    double z;

    zbVector3d() noexcept;
    zbVector3d(double x, double y, double z);
    zbVector3d(const zbVector3d& other) = default;
    zbVector3d& operator=(const zbVector3d& other);

    void set(double x, double y, double z);
    zbVector3d operator+(const zbVector3d& other);
    // Stores this - other into this object and returns a copy of it.
    zbVector3d operator-(const zbVector3d& other);
    zbVector3d& operator+=(const zbVector3d& other);
    zbVector3d& operator-=(const zbVector3d& other);
    // Each component times the float, widened to double first.
    zbVector3d operator*(float& scalar);
    // Cross product this x other.
    zbVector3d operator*(zbVector3d& other);
    double Dot(zbVector3d other);
    // Length in the x-y plane.
    double Mag();
    double getLength();
    void Normalize();
};

class ZB_API qwVector3f {
public:
    float x;
    float y;
    float z;

    qwVector3f() noexcept;
    qwVector3f(float x, float y, float z);
    qwVector3f(const qwVector3f& other) = default;
    qwVector3f& operator=(const qwVector3f& other);

    void set(float x, float y, float z);
    qwVector3f operator+(const qwVector3f& other);
    // Stores this - other into this object and returns a copy of it.
    qwVector3f operator-(const qwVector3f& other);
    qwVector3f& operator+=(const qwVector3f& other);
    qwVector3f& operator-=(const qwVector3f& other);
    qwVector3f operator*(float& scalar);
    // Cross product this x other.
    qwVector3f operator*(qwVector3f& other);
    float Dot(qwVector3f other);
    // Length in the x-y plane: sum of squares in float, root in double, rounded to float.
    float Mag();
    float getLength();
    void Normalize();
};

class ZB_API qwPoint {
public:
    int x;
    int y;

    qwPoint() noexcept;
    qwPoint(int x, int y);
    qwPoint(const qwPoint& other);
    qwPoint& operator=(const qwPoint& other);

    qwPoint operator+(const qwPoint& other) const;
    qwPoint operator-(const qwPoint& other) const;
    bool Equals(const qwPoint& other);
};

} // namespace zbBase
