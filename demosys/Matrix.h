#pragma once

#include <cmath>

// R x C elements of type T in one flat array of S = R * C. Flat element k is the one that
// glMultMatrixf / glUniformMatrix4fv read as element k, so data() goes to OpenGL as it is.
template <typename T, int R, int C, int S> class Matrix {
    static_assert(S == R * C, "S must be R * C");

public:
    // All elements zero; see identity().
    Matrix() : elements{} {}

    static Matrix identity() {
        static_assert(R == C, "only a square matrix has an identity");
        Matrix m;
        for (int i = 0; i < R; ++i) {
            m[i * C + i] = 1;
        }
        return m;
    }

    T& operator[](int k) { return elements[k]; }
    const T& operator[](int k) const { return elements[k]; }
    T* data() { return elements; }
    const T* data() const { return elements; }

    // result[C*i + j] = sum over k of m[C*i + k] * this[C*k + j]: the argument's flat rows
    // against this matrix's flat columns. This matrix is left unchanged.
    Matrix mult(const Matrix& m) const {
        static_assert(R == C, "mult is defined for square matrices");
        Matrix result;
        for (int i = 0; i < R; ++i) {
            for (int j = 0; j < C; ++j) {
                T sum = 0;
                for (int k = 0; k < C; ++k) {
                    sum += m[C * i + k] * elements[C * k + j];
                }
                result[C * i + j] = sum;
            }
        }
        return result;
    }

    // The rotations write only their four elements (angle in radians); every other element
    // keeps its value, so start from identity().
    void setXRotation(T a) { setRotationElements(a, 5, 6, 9, 10); }
    void setYRotation(T a) { setRotationElements(a, 0, 2, 8, 10); }
    void setZRotation(T a) { setRotationElements(a, 0, 1, 4, 5); }

private:
    void setRotationElements(T a, int cosFirst, int sinAt, int minusSinAt, int cosSecond) {
        static_assert(R == 4 && C == 4, "the rotations are laid out for 4 x 4 matrices");
        elements[cosFirst] = std::cos(a);
        elements[sinAt] = std::sin(a);
        elements[minusSinAt] = -std::sin(a);
        elements[cosSecond] = std::cos(a);
    }

    T elements[S];
};
