// Every failure becomes a message: nothing that is thrown here may pass through Qt.
#include "PictureCommands.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QFileDialog>
#include <QImage>
#include <QImageWriter>
#include <QMimeData>
#include <span>
#include <stdexcept>
#include <utility>

#include "CaughtError.h"
#include "PictureDialog.h"
#include "PngFile.h"
#include "RecentFiles.h"
#include "TranslatedText.h"
#include "ViewerWidget.h"

namespace {

bool IsJpeg(const std::string& path) {
    const QString name = QString::fromStdString(path).toLower();
    return name.endsWith(".jpg") || name.endsWith(".jpeg");
}

/// A view of the pixels; the picture must outlive it.
QImage ImageOf(const KV_ScenePane::Picture& picture, bool isTransparent) {
    const auto* const bytes = reinterpret_cast<const uchar*>(picture.pixels.data());
    const auto format = isTransparent ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    return QImage(bytes, picture.width, picture.height, static_cast<qsizetype>(picture.width) * 4, format);
}

/// @throws std::runtime_error with Qt's reason
QByteArray JpegBytes(const QImage& image) {
    constexpr int kQuality = 92;  // of 100
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpg");
    writer.setQuality(kQuality);
    if (!writer.write(image)) throw std::runtime_error(writer.errorString().toStdString());
    return bytes;
}

bool WritePicture(const std::string& path, const KV_ScenePane::Picture& picture, bool isTransparent,
                  std::string* reason) {
    if (!IsJpeg(path)) return WritePng(path, picture, reason, isTransparent ? PngAlpha::Kept : PngAlpha::Dropped);
    const QByteArray bytes = JpegBytes(ImageOf(picture, false));
    return WriteFileBytes(path, std::as_bytes(std::span(bytes.constData(), static_cast<std::size_t>(bytes.size()))),
                          reason);
}

/// Until the dialog is gone from the screen and the viewer has drawn what it covered: while the picture is taken, the
/// screen shows a copy of its present content.
void WaitForScreen() { QGuiApplication::sync(); }

}  // namespace

PictureCommands::PictureCommands(ViewerWidget& viewer, PictureHooks hooks, QWidget& window)
    : QObject(&window), m_viewer(viewer), m_hooks(std::move(hooks)), m_window(window) {}

void PictureCommands::AskForPicture() {
    if (m_viewer.Pane() == nullptr) return;
    PictureLook first = m_look;
    first.size = {};
    PictureDialog dialog(m_viewer.DeviceSize(), first, LargestPictureSide(*m_viewer.Pane()), &m_window);
    if (dialog.exec() != QDialog::Accepted) return;
    m_look = dialog.Look();
    if (dialog.ChosenUse() == PictureDialog::Use::Save) {
        AskForFile(m_look);
        return;
    }
    WaitForScreen();
    (void)CopyPicture(m_look);
}

void PictureCommands::AskForFile(const PictureLook& look) {
    QStringList filters = {tr("PNG pictures (*.png)")};
    if (!look.isTransparent) filters << tr("JPEG pictures (*.jpg *.jpeg)");
    QFileDialog dialog(&m_window, tr("Save view as picture"), StoredFolder(FolderUse::Picture));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix("png");  // by the dialog, so that it asks before it replaces the file of the full name
    dialog.selectFile(tr("view.png"));
    connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString& filter) {
        const bool isPng = filter == filters.constFirst();
        dialog.setDefaultSuffix(isPng ? "png" : "jpg");
        const QString name = QFileInfo(dialog.selectedFiles().value(0)).completeBaseName();
        if (!name.isEmpty()) dialog.selectFile(name + (isPng ? ".png" : ".jpg"));
    });
    if (dialog.exec() != QDialog::Accepted) return;
    const QString file = dialog.selectedFiles().constFirst();
    StoreFolderOf(FolderUse::Picture, file);
    WaitForScreen();
    (void)SavePicture(QFile::encodeName(file).toStdString(), look);
}

bool PictureCommands::SavePicture(const std::string& path, const PictureLook& look) {
    if (m_viewer.Pane() == nullptr) return false;
    const QString file = QString::fromStdString(path);
    std::string reason;
    try {
        if (look.isTransparent && IsJpeg(path))
            throw std::runtime_error(tr("JPEG files have no transparency: choose PNG").toStdString());
        const KV_ScenePane::Picture picture = TakeViewPicture(m_viewer, look, m_hooks);
        if (WritePicture(path, picture, look.isTransparent, &reason)) {
            emit Reported(tr("%1: picture of %2 x %3 pixels")
                              .arg(file, QString::number(picture.width), QString::number(picture.height)));
            return true;
        }
    } catch (...) {
        reason = TextOfCaughtError();
    }
    emit Failed(tr("%1: not written: %2").arg(file, TranslatedText(reason)));
    return false;
}

void PictureCommands::CopyPicture() {
    PictureLook look = m_look;
    look.size = {};
    (void)CopyPicture(look);
}

bool PictureCommands::CopyPicture(const PictureLook& look) {
    if (m_viewer.Pane() == nullptr) return false;
    try {
        const KV_ScenePane::Picture picture = TakeViewPicture(m_viewer, look, m_hooks);
        const QImage image = ImageOf(picture, look.isTransparent).copy();  // the clipboard outlives the picture
        if (image.isNull()) throw std::bad_alloc();
        auto* const data = new QMimeData;  // the clipboard deletes it
        data->setImageData(image);         // offered as image/png, with its alpha, among others
        QApplication::clipboard()->setMimeData(data);
        emit Reported(tr("Picture of %1 x %2 pixels copied").arg(picture.width).arg(picture.height));
        return true;
    } catch (...) {
        emit Failed(tr("No picture copied: %1").arg(TranslatedText(TextOfCaughtError())));
        return false;
    }
}
