#pragma once

namespace tarn::details {

/// A point or a direction. The operations below fix the order of every rounding: sums run x, y, z from left
/// to right.
struct Vector3 {
    double x;
    double y;
    double z;

    double operator[](int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
};

inline Vector3 operator+(const Vector3& a, const Vector3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vector3 operator-(const Vector3& a, const Vector3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vector3 operator*(double factor, const Vector3& a) {
    return {factor * a.x, factor * a.y, factor * a.z};
}

inline double Dot(const Vector3& a, const Vector3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vector3 Cross(const Vector3& a, const Vector3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double LengthSquared(const Vector3& a) {
    return Dot(a, a);
}

}  // namespace tarn::details
