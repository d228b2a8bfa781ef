// How the scans of the next imports are read.
#pragma once
#include <QDialog>

#include "FileImport.h"

class ColorButton;
class NumberBox;
class QSpinBox;

class ScanImportDialog : public QDialog {
    Q_OBJECT
public:
    /// @param settings  shown first
    explicit ScanImportDialog(const ImportSettings& settings, QWidget* parent = nullptr);
    [[nodiscard]] ImportSettings Settings() const;

private:
    ImportSettings m_settings;       // with what the dialog does not show
    double m_shownConfidence = 0.0;  // first value of the field
    QSpinBox* m_pSkip;
    NumberBox* m_pConfidence;
    ColorButton* m_pColor;
};
