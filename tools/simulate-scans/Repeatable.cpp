// Sines by their Taylor series. The random stream is in the header.
#include "Repeatable.h"

#include <cmath>
#include <numbers>

namespace simulate {

double SinTurns(double turns) {
    const double angle = (turns - std::floor(turns + 0.5)) * 2.0 * std::numbers::pi;
    // Horner scheme up to the 27th power: the next term is below 1e-15 at half a turn.
    double sum = 0;
    for (int power = 27; power >= 3; power -= 2) sum = (1.0 + sum) * (-angle * angle / (power * (power - 1.0)));
    return angle * (1.0 + sum);
}

double CosTurns(double turns) { return SinTurns(turns + 0.25); }

}  // namespace simulate
