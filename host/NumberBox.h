// A field for a number with a decimal point.
#pragma once
#include <QDoubleSpinBox>

/// Shows a number with as many digits as it has, not with all decimals.
class NumberBox : public QDoubleSpinBox {
public:
    using QDoubleSpinBox::QDoubleSpinBox;
    [[nodiscard]] QString textFromValue(double value) const override {
        return locale().toString(value, 'f', QLocale::FloatingPointShortest).remove(locale().groupSeparator());
    }
};
