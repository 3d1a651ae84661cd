#pragma once

#include "RecordCore/Model/NRect.h"

namespace RecordCore {

/// A critically damped spring that pulls one value towards another, stepped by its exact solution
/// (x″ = −2ωx′ − ω²x about the target), so the result doesn't depend on how small the steps are.
struct Spring {
    double value = 0;
    double velocity = 0; ///< per second

    /// Advances by `dt` seconds; `stiffness` is the rate ω and `decay` is exp(−ω·dt).
    void step(double target, double stiffness, double decay, double dt) {
        const double d = value - target;
        const double k = velocity + stiffness * d;
        value = target + (d + k * dt) * decay;
        velocity = (velocity - k * stiffness * dt) * decay;
    }

    bool operator==(const Spring&) const = default;
};

/// The virtual camera: a spring on the view's centre and on the logarithm of its zoom, which makes zooming in
/// and out feel equally fast. Positions are normalised source coordinates.
struct Camera {
    double stiffness = 4.6; ///< spring rate ω, per second
    Spring centerX;
    Spring centerY;
    Spring logZoom;   ///< natural logarithm of the zoom; 0 shows the base view
    double baseW = 1; ///< size of the view at zoom 1
    double baseH = 1;

    /// At rest in the view `start`.
    static Camera resting(const NRect& start, double baseW, double baseH, double stiffness);

    /// Moves towards `target` for `dt` seconds and returns the view then.
    NRect step(const NRect& target, double dt);

    /// The view of the current state, moved to lie inside the source.
    NRect current() const;

    bool operator==(const Camera&) const = default;
};

} // namespace RecordCore
