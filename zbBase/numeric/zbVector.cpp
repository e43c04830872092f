#include "zbBase/numeric/zbVector.h"

#include <cmath>
#include <cstdint>

namespace zbBase {

// ---- zbVector2d ----

zbVector2d::zbVector2d() noexcept : x(0.0), y(0.0) {}
zbVector2d::zbVector2d(double x_, double y_) : x(x_), y(y_) {}

zbVector2d& zbVector2d::operator=(const zbVector2d& other) {
    x = other.x;
    y = other.y;
    return *this;
}

void zbVector2d::set(double x_, double y_) {
    x = x_;
    y = y_;
}

zbVector2d zbVector2d::operator+(const zbVector2d& other) {
    return zbVector2d(x + other.x, y + other.y);
}

zbVector2d zbVector2d::operator-(const zbVector2d& other) {
    return zbVector2d(x - other.x, y - other.y);
}

zbVector2d& zbVector2d::operator+=(const zbVector2d& other) {
    x += other.x;
    y += other.y;
    return *this;
}

zbVector2d& zbVector2d::operator-=(const zbVector2d& other) {
    x -= other.x;
    y -= other.y;
    return *this;
}

// ---- zbVector3d ----

zbVector3d::zbVector3d() noexcept : x(0.0), y(0.0), z(0.0) {}
zbVector3d::zbVector3d(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

zbVector3d& zbVector3d::operator=(const zbVector3d& other) {
    x = other.x;
    y = other.y;
    z = other.z;
    return *this;
}

void zbVector3d::set(double x_, double y_, double z_) {
    x = x_;
    y = y_;
    z = z_;
}

zbVector3d zbVector3d::operator+(const zbVector3d& other) {
    return zbVector3d(x + other.x, y + other.y, z + other.z);
}

zbVector3d zbVector3d::operator-(const zbVector3d& other) {
    *this -= other;
    return *this;
}

zbVector3d& zbVector3d::operator+=(const zbVector3d& other) {
    x += other.x;
    y += other.y;
    z += other.z;
    return *this;
}

zbVector3d& zbVector3d::operator-=(const zbVector3d& other) {
    x -= other.x;
    y -= other.y;
    z -= other.z;
    return *this;
}

zbVector3d zbVector3d::operator*(float& scalar) {
    const double s = static_cast<double>(scalar);
    return zbVector3d(x * s, y * s, z * s);
}

zbVector3d zbVector3d::operator*(zbVector3d& b) {
    return zbVector3d(y * b.z - b.y * z, b.x * z - x * b.z, b.y * x - y * b.x);
}

double zbVector3d::Dot(zbVector3d b) { return (y * b.y + x * b.x) + z * b.z; }

double zbVector3d::Mag() { return std::sqrt(x * x + y * y); }

double zbVector3d::getLength() { return std::sqrt(x * x + y * y + z * z); }

void zbVector3d::Normalize() {
    double length = getLength();
    if (length == 0.0) {
        length = 1.0;
    }
    x /= length;
    y /= length;
    z /= length;
}

// ---- qwVector3f ----

qwVector3f::qwVector3f() noexcept : x(0.0f), y(0.0f), z(0.0f) {}
qwVector3f::qwVector3f(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

qwVector3f& qwVector3f::operator=(const qwVector3f& other) {
    x = other.x;
    y = other.y;
    z = other.z;
    return *this;
}

void qwVector3f::set(float x_, float y_, float z_) {
    x = x_;
    y = y_;
    z = z_;
}

qwVector3f qwVector3f::operator+(const qwVector3f& other) {
    return qwVector3f(x + other.x, y + other.y, z + other.z);
}

qwVector3f qwVector3f::operator-(const qwVector3f& other) {
    *this -= other;
    return *this;
}

qwVector3f& qwVector3f::operator+=(const qwVector3f& other) {
    x += other.x;
    y += other.y;
    z += other.z;
    return *this;
}

qwVector3f& qwVector3f::operator-=(const qwVector3f& other) {
    x -= other.x;
    y -= other.y;
    z -= other.z;
    return *this;
}

qwVector3f qwVector3f::operator*(float& scalar) {
    return qwVector3f(x * scalar, y * scalar, z * scalar);
}

qwVector3f qwVector3f::operator*(qwVector3f& b) {
    return qwVector3f(y * b.z - b.y * z, b.x * z - x * b.z, b.y * x - y * b.x);
}

float qwVector3f::Dot(qwVector3f b) { return (y * b.y + x * b.x) + z * b.z; }

float qwVector3f::Mag() {
    const float sum = x * x + y * y;
    return static_cast<float>(std::sqrt(static_cast<double>(sum)));
}

float qwVector3f::getLength() {
    const float sum = x * x + y * y + z * z;
    return static_cast<float>(std::sqrt(static_cast<double>(sum)));
}

void qwVector3f::Normalize() {
    float length = getLength();
    if (length == 0.0f) {
        length = 1.0f;
    }
    x /= length;
    y /= length;
    z /= length;
}

// ---- qwPoint ----

qwPoint::qwPoint() noexcept : x(0), y(0) {}
qwPoint::qwPoint(int x_, int y_) : x(x_), y(y_) {}
qwPoint::qwPoint(const qwPoint& other) : x(other.x), y(other.y) {}

qwPoint& qwPoint::operator=(const qwPoint& other) {
    x = other.x;
    y = other.y;
    return *this;
}

namespace {
// Two's-complement wrap-around without signed overflow.
int wrapAdd(int a, int b) {
    return static_cast<int>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
int wrapSub(int a, int b) {
    return static_cast<int>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
} // namespace

qwPoint qwPoint::operator+(const qwPoint& other) const {
    return qwPoint(wrapAdd(x, other.x), wrapAdd(y, other.y));
}

qwPoint qwPoint::operator-(const qwPoint& other) const {
    return qwPoint(wrapSub(x, other.x), wrapSub(y, other.y));
}

bool qwPoint::Equals(const qwPoint& other) { return x == other.x && y == other.y; }

} // namespace zbBase
