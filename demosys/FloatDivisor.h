#pragma once

// Divides floats by a fixed divisor with one multiplication by its reciprocal in double
// precision, which rounds to the same float as the division in single precision: the exact
// quotient of two floats lies at least 2^-50 of its size away from any point where rounding
// to float changes, and the double product is off by at most 2^-52 of it (a zero or infinite
// divisor gives what the division gives). A multiplication costs a fraction of a division.
class FloatDivisor {
public:
    explicit FloatDivisor(float divisor) : reciprocal(1.0 / static_cast<double>(divisor)) {}

    float divide(float dividend) const {
        return static_cast<float>(static_cast<double>(dividend) * reciprocal);
    }

private:
    double reciprocal;
};
