// A form with one line per setting.
#include "ScanImportDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

#include "ColorButton.h"
#include "NumberBox.h"

ScanImportDialog::ScanImportDialog(const ImportSettings& settings, QWidget* parent)
    : QDialog(parent),
      m_settings(settings),
      m_pSkip(new QSpinBox),
      m_pConfidence(new NumberBox),
      m_pColor(new ColorButton(settings.color)) {
    setWindowTitle(tr("Scan import settings"));
    auto* const form = new QFormLayout(this);
    auto* const about = new QLabel(tr("For the scans that are opened from now on."));
    form->addRow(about);
    m_pSkip->setObjectName("skip");
    m_pSkip->setRange(1, 32767);
    m_pSkip->setValue(settings.skip);
    m_pSkip->setToolTip(tr("1 reads every point of the grid, 2 one for 2 x 2 points and so on"));
    form->addRow(tr("&Skip, one point for N x N points, N:"), m_pSkip);
    constexpr double kLargest = 1e9;
    m_pConfidence->setObjectName("confidence");
    m_pConfidence->setDecimals(4);
    m_pConfidence->setRange(-kLargest, kLargest);
    m_pConfidence->setValue(static_cast<double>(settings.confidence));
    m_shownConfidence = m_pConfidence->value();
    m_pConfidence->setToolTip(tr("Points with a lower confidence are left out"));
    form->addRow(tr("Lowest &confidence of a point:"), m_pConfidence);
    m_pColor->setObjectName("scanColor");
    m_pColor->SetName(tr("Colour of scans and free points that have none of their own"));
    form->addRow(tr("C&olour of scans without colours:"), m_pColor);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

ImportSettings ScanImportDialog::Settings() const {
    ImportSettings settings = m_settings;
    settings.skip = static_cast<std::int16_t>(m_pSkip->value());
    // The field rounds: a value that was not changed keeps all its digits.
    if (m_pConfidence->value() != m_shownConfidence) settings.confidence = static_cast<float>(m_pConfidence->value());
    settings.color = m_pColor->Packed();
    return settings;
}
