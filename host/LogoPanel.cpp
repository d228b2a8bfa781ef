// Nine buttons choose the place; they are arranged like the places in the picture.
#include "LogoPanel.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>

#include "RecentFiles.h"
#include "ToolTip.h"

namespace {

constexpr int kStartMargin = 10;  // pixels
constexpr int kMaxMargin = 500;

/// One of the nine buttons that choose the place.
struct AnchorButton {
    const char* name;
    const char16_t* sign;
};
// In the order of LogoAnchor.
constexpr AnchorButton kAnchors[kLogoAnchorCount] = {
    {QT_TRANSLATE_NOOP("LogoPanel", "Top left"), u"\u2196"},     {QT_TRANSLATE_NOOP("LogoPanel", "Top"), u"\u2191"},
    {QT_TRANSLATE_NOOP("LogoPanel", "Top right"), u"\u2197"},    {QT_TRANSLATE_NOOP("LogoPanel", "Left"), u"\u2190"},
    {QT_TRANSLATE_NOOP("LogoPanel", "Centre"), u"\u2022"},       {QT_TRANSLATE_NOOP("LogoPanel", "Right"), u"\u2192"},
    {QT_TRANSLATE_NOOP("LogoPanel", "Bottom left"), u"\u2199"},  {QT_TRANSLATE_NOOP("LogoPanel", "Bottom"), u"\u2193"},
    {QT_TRANSLATE_NOOP("LogoPanel", "Bottom right"), u"\u2198"},
};

}  // namespace

LogoPanel::LogoPanel(QWidget* parent)
    : QWidget(parent),
      m_pFile(new QLabel(tr("no image"))),
      m_pAnchors(new QButtonGroup(this)),
      m_pMargin(new QSpinBox),
      m_pVisible(new QCheckBox(tr("Sho&w"))) {
    m_pFile->setTextFormat(Qt::PlainText);  // it names a file
    auto* const open = new QPushButton(tr("&Open image..."));
    connect(open, &QPushButton::clicked, this, &LogoPanel::AskForImage);
    m_pMargin->setObjectName("logoMargin");
    m_pMargin->setRange(0, kMaxMargin);
    m_pMargin->setValue(kStartMargin);
    m_pMargin->setSuffix(tr(" px"));
    m_pMargin->setKeyboardTracking(false);  // each new place adds an overlay, so not one per typed digit
    connect(m_pMargin, &QSpinBox::valueChanged, this, &LogoPanel::Place);
    m_pVisible->setObjectName("logoVisible");
    m_pVisible->setChecked(true);
    connect(m_pVisible, &QCheckBox::toggled, this, [this](bool on) { m_logo.SetVisible(on); });
    auto* const form = new QFormLayout(this);
    form->addRow(open, m_pFile);
    form->addRow(tr("Place:"), MakeAnchors());
    form->addRow(tr("Mar&gin:"), m_pMargin);
    form->addRow(m_pVisible);
    Place();
    setEnabled(false);
}

QWidget* LogoPanel::MakeAnchors() {
    auto* const anchors = new QWidget;
    auto* const grid = new QGridLayout(anchors);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(1);
    // The empty fourth column gets the rest of the width.
    grid->setColumnStretch(3, 1);
    for (int i = 0; i < kLogoAnchorCount; ++i) {
        auto* const button = new QToolButton;
        button->setText(QString::fromUtf16(kAnchors[i].sign));
        button->setToolTip(tr(kAnchors[i].name));
        button->setAccessibleName(button->toolTip());
        button->setCheckable(true);
        button->setChecked(i == static_cast<int>(LogoAnchor::BottomRight));
        m_pAnchors->addButton(button, i);
        grid->addWidget(button, i / 3, i % 3);
    }
    connect(m_pAnchors, &QButtonGroup::idClicked, this, &LogoPanel::Place);
    return anchors;
}

void LogoPanel::SetViewer(KV_ScenePane::_DKV_ScenePane* methods) {
    m_logo.SetViewer(methods);
    setEnabled(methods != nullptr);
}

bool LogoPanel::OpenImage(const QString& path) {
    QString reason;
    std::optional<LogoImage> image = LoadLogo(path, &reason);
    // The logo that is shown stays when the new one cannot be read.
    if (!image) {
        emit Failed(tr("%1: no logo: %2").arg(path, reason));
        return false;
    }
    m_pFile->setText(
        tr("%1, %2 x %3")
            .arg(QFileInfo(path).fileName(), QString::number(image->width), QString::number(image->height)));
    m_pFile->setToolTip(PlainToolTip(path));
    m_pVisible->setChecked(true);  // a hidden logo would look like a failure
    m_logo.SetImage(*std::move(image));
    return true;
}

void LogoPanel::AskForImage() {
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Open image"), StoredFolder(FolderUse::Logo), LogoFileFilter());
    StoreFolderOf(FolderUse::Logo, path);
    if (!path.isEmpty()) (void)OpenImage(path);
}

void LogoPanel::Place() { m_logo.SetPlace(static_cast<LogoAnchor>(m_pAnchors->checkedId()), m_pMargin->value()); }

void LogoPanel::HideInViewer(bool isHidden) { m_logo.SetVisible(!isHidden && m_pVisible->isChecked()); }
