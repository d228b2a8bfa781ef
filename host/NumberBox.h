// A field for a number with a decimal point.
#pragma once
#include <QDoubleSpinBox>

/// Shows a number with as many digits as it has, not with all decimals. Refuses separators of thousands: a comma that
/// was meant as a decimal point must not be dropped.
class NumberBox : public QDoubleSpinBox {
public:
    explicit NumberBox(QWidget* parent = nullptr) : QDoubleSpinBox(parent) {
        QLocale plain = locale();
        plain.setNumberOptions(plain.numberOptions() | QLocale::RejectGroupSeparator);
        setLocale(plain);
    }
    [[nodiscard]] QString textFromValue(double value) const override {
        return locale().toString(value, 'f', QLocale::FloatingPointShortest).remove(locale().groupSeparator());
    }
};
