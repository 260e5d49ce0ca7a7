#pragma once

#include <array>
#include <cmath>

namespace chalkpane {

struct Point2 {
    double x = 0.0;
    double y = 0.0;
    friend constexpr bool operator==(const Point2&, const Point2&) = default;
};

// A transform of the plane: nine doubles, applied to row vectors, so that (x, y, 1) times the matrix is the new point
// and a product reads in the order in which its transforms happen. The third column is 0, 0, 1 in all that is made
// here. Identity by default.
struct Matrix3 {
    std::array<std::array<double, 3>, 3> rows{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};

    friend constexpr bool operator==(const Matrix3&, const Matrix3&) = default;

    [[nodiscard]] static constexpr Matrix3 Translation(double x, double y) {
        return {{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {x, y, 1.0}}}};
    }
    [[nodiscard]] static constexpr Matrix3 Scaling(double x, double y) {
        return {{{{x, 0.0, 0.0}, {0.0, y, 0.0}, {0.0, 0.0, 1.0}}}};
    }
    // Anticlockwise in a plane whose y grows upward: a quarter turn takes (1, 0) to (0, 1).
    [[nodiscard]] static Matrix3 Rotation(double radians) {
        const double cosine = std::cos(radians);
        const double sine = std::sin(radians);
        return {{{{cosine, sine, 0.0}, {-sine, cosine, 0.0}, {0.0, 0.0, 1.0}}}};
    }

    // First this, then `next`.
    [[nodiscard]] constexpr Matrix3 operator*(const Matrix3& next) const {
        Matrix3 product;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                product.rows[i][j] =
                    rows[i][0] * next.rows[0][j] + rows[i][1] * next.rows[1][j] + rows[i][2] * next.rows[2][j];
        return product;
    }

    [[nodiscard]] constexpr double Determinant() const {
        return rows[0][0] * Cofactor(0, 0) + rows[0][1] * Cofactor(0, 1) + rows[0][2] * Cofactor(0, 2);
    }
    // True when every entry, and every entry of the inverse, is a finite number.
    [[nodiscard]] bool IsInvertible() const { return IsFinite() && Determinant() != 0.0 && Inverse().IsFinite(); }
    // Of a matrix that has none, all entries are infinite or NaN.
    [[nodiscard]] constexpr Matrix3 Inverse() const {
        const double determinant = Determinant();
        Matrix3 inverse;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) inverse.rows[i][j] = Cofactor(j, i) / determinant;
        return inverse;
    }
    [[nodiscard]] bool IsFinite() const {
        for (const auto& row : rows)
            for (const double entry : row)
                if (!std::isfinite(entry)) return false;
        return true;
    }

    [[nodiscard]] constexpr Point2 Transform(double x, double y) const {
        return {x * rows[0][0] + y * rows[1][0] + rows[2][0], x * rows[0][1] + y * rows[1][1] + rows[2][1]};
    }
    [[nodiscard]] constexpr Point2 Transform(const Point2& point) const { return Transform(point.x, point.y); }

private:
    // With its sign; the cyclic choice of the other rows and columns brings it along.
    [[nodiscard]] constexpr double Cofactor(std::size_t row, std::size_t column) const {
        const auto& a = rows[(row + 1) % 3];
        const auto& b = rows[(row + 2) % 3];
        const std::size_t i = (column + 1) % 3;
        const std::size_t j = (column + 2) % 3;
        return a[i] * b[j] - a[j] * b[i];
    }
};

}  // namespace chalkpane
