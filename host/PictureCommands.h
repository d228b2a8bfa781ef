// Pictures of the view: into a file and to the clipboard.
#pragma once
#include <QObject>
#include <string>

#include "ViewPicture.h"

class QWidget;

class PictureCommands : public QObject {
    Q_OBJECT
public:
    /// @param viewer  must outlive this object. @param window  the parent of the dialogs
    PictureCommands(ViewerWidget& viewer, PictureHooks hooks, QWidget& window);

    // These do nothing without a viewer.

    /// Shows the dialog, then that for the file.
    void AskForPicture();
    /// Copies the view in the size of the window, with decorations and background as last chosen in the dialog.
    void CopyPicture();
    /// Writes a picture as a PNG file, or as a JPEG file when the name ends so, which has no transparency.
    /// @param path  in bytes
    /// @return whether it was written
    bool SavePicture(const std::string& path, const PictureLook& look);
    /// @return whether the clipboard has the picture
    bool CopyPicture(const PictureLook& look);

signals:
    /// A picture was saved or copied. @param text  one line
    void Reported(const QString& text);
    /// No picture was saved or copied. @param text  one line
    void Failed(const QString& text);

private:
    /// @param path  as the user chose it
    void AskForFile(const PictureLook& look);

    ViewerWidget& m_viewer;
    const PictureHooks m_hooks;
    QWidget& m_window;
    PictureLook m_look;  // as last chosen; the size is not kept
};
