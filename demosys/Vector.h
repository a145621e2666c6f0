#pragma once

#include <cmath>
#include <type_traits>

// N components of type T stored contiguously and nothing else, so a vector (or an array of
// them) can be handed to OpenGL as plain T values through data(). Passed by value.
template <typename T, int N> class Vector {
    static_assert(N > 0, "a vector needs at least one component");

public:
    // All components zero.
    Vector() : components{} {}

    // One value per component: Vector<float, 3>(1, 2, 3).
    template <typename... Values, typename = std::enable_if_t<sizeof...(Values) == N>>
    Vector(Values... values) : components{static_cast<T>(values)...} {}

    T& operator[](int i) { return components[i]; }
    const T& operator[](int i) const { return components[i]; }
    T* data() { return components; }
    const T* data() const { return components; }

    T& x() { return components[0]; }
    T& y() { return at<1>(); }
    T& z() { return at<2>(); }
    T& w() { return at<3>(); }
    const T& x() const { return components[0]; }
    const T& y() const { return at<1>(); }
    const T& z() const { return at<2>(); }
    const T& w() const { return at<3>(); }

    Vector operator+(const Vector& b) const {
        Vector r;
        for (int i = 0; i < N; ++i) {
            r[i] = components[i] + b[i];
        }
        return r;
    }

    Vector operator-(const Vector& b) const {
        Vector r;
        for (int i = 0; i < N; ++i) {
            r[i] = components[i] - b[i];
        }
        return r;
    }

    Vector operator*(float s) const {
        Vector r;
        for (int i = 0; i < N; ++i) {
            r[i] = static_cast<T>(components[i] * s);
        }
        return r;
    }

    T dotProduct(const Vector& b) const {
        T sum = 0;
        for (int i = 0; i < N; ++i) {
            sum += components[i] * b[i];
        }
        return sum;
    }

    Vector crossProduct(const Vector& b) const {
        static_assert(N == 3, "the cross product needs three components");
        const Vector& a = *this;
        return Vector(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                      a[0] * b[1] - a[1] * b[0]);
    }

    // In place. A zero vector becomes non-numbers: callers rely on seeing that, so no guard.
    void normalize() {
        const T length = std::sqrt(dotProduct(*this));
        for (int i = 0; i < N; ++i) {
            components[i] /= length;
        }
    }

    // this at t = 0, b at t = 1.
    Vector linearInterpolate(const Vector& b, float t) const { return *this * (1 - t) + b * t; }

private:
    template <int I> T& at() {
        static_assert(I < N, "the vector has no such component");
        return components[I];
    }
    template <int I> const T& at() const {
        static_assert(I < N, "the vector has no such component");
        return components[I];
    }

    T components[N];
};
