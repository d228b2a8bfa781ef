// Mesh files in the window: opened in every way, refused in one line, exported.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>
#include <cstdlib>

#include "host/MainWindowFixture.h"
#include "host/MeshFiles.h"
#include "host/ModalDialogs.h"

namespace {

class MainWindowMesh : public MainWindowFixture {
protected:
    /// Answers the dialog that the menu opens.
    /// @param name    typed into it; empty keeps the name that the dialog proposes
    /// @param filter  chosen in it; empty keeps the first one
    /// @return the proposed name
    QString Export(const std::string& name, const QString& filter = {}) const {
        QString proposal;
        const DialogAnswer<QFileDialog> answer([&](QFileDialog& dialog) {
            auto* const edit = dialog.findChild<QLineEdit*>("fileNameEdit");
            if (!filter.isEmpty()) {
                auto* const filters = dialog.findChild<QComboBox*>("fileTypeCombo");
                filters->setCurrentText(filter);
                emit filters->activated(filters->currentIndex());
                emit filters->textActivated(filters->currentText());
            }
            proposal = edit->text();
            if (!name.empty()) edit->setText(QString::fromStdString(name));
            static_cast<QDialog&>(dialog).accept();
            if (dialog.isVisible()) dialog.reject();  // the file was not to be overwritten
        });
        Trigger("Export selected object...");
        EXPECT_TRUE(answer.WasShown());
        return proposal;
    }
    void Select(int row) const { m_window->Objects().setCurrentItem(m_window->Objects().topLevelItem(row)); }
};

TEST_F(MainWindowMesh, OpensAllFormatsAndScansInTheirOrder) {
    Show();
    WriteText(m_folder / "a.ply", TetraPlyText());
    WritePcm(m_folder / "b.pcm", 3, 2);
    WriteStl(m_folder / "c.STL");
    WriteOis(m_folder / "d.ois");
    WriteMsh(m_folder / "e.msh");
    Import({m_folder / "a.ply"});
    EXPECT_TRUE(m_window->ExportObjectTo(0, m_folder / "f.hps"));
    m_window->ClearScene();
    m_window->Messages().clear();
    Import({m_folder / "a.ply", m_folder / "b.pcm", m_folder / "c.STL", m_folder / "d.ois", m_folder / "e.msh",
            m_folder / "f.hps"});
    ASSERT_EQ(Rows(), (std::vector<std::string>{"a.ply", "b.pcm", "c.STL", "d.ois", "e.msh", "f.hps"}));
    EXPECT_EQ(Messages(), "");
    for (const int row : {0, 2, 3, 4, 5}) {
        EXPECT_EQ(m_window->Objects().topLevelItem(row)->text(ObjectList::kVertices), "4") << row;
        EXPECT_EQ(m_window->Objects().topLevelItem(row)->text(ObjectList::kTriangles), "4") << row;
    }
}

TEST_F(MainWindowMesh, OpensForeignFormatsAmongTheOthersInTheirOrder) {
    Show();
    const std::string quad = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n";
    for (const char* const name : {"a.obj", "c.OBJ", "d.obj"}) WriteText(m_folder / name, quad);
    WritePcm(m_folder / "b.pcm", 3, 2);
    WriteText(m_folder / "e.stl",
              "solid a\nfacet\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\n"
              "endfacet\nendsolid\n");
    // The viewer refuses faces of four corners only when it meets one.
    WriteText(m_folder / "f.ply",
              "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
              "property float z\nelement face 1\nproperty list uchar int vertex_indices\n"
              "end_header\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n");
    WriteText(m_folder / "g.off", "no mesh");
    WriteStl(m_folder / "h.stl");
    std::vector<std::string> files;
    for (const char* const name : {"a.obj", "b.pcm", "c.OBJ", "d.obj", "e.stl", "f.ply", "g.off", "h.stl"})
        files.push_back(m_folder / name);
    Import(files);
    EXPECT_EQ(Rows(), (std::vector<std::string>{"a.obj", "b.pcm", "c.OBJ", "d.obj", "e.stl", "f.ply", "h.stl"}));
    for (const int row : {0, 2, 3, 5})
        EXPECT_EQ(m_window->Objects().topLevelItem(row)->text(ObjectList::kTriangles), "2") << row;
    EXPECT_EQ(m_window->Objects().topLevelItem(4)->text(ObjectList::kTriangles), "1");
    EXPECT_NE(Messages().find("g.off: nothing added: "), std::string::npos) << Messages();
    EXPECT_EQ(Messages().find('\n', Messages().find("g.off")), std::string::npos) << "one line: " << Messages();
}

TEST_F(MainWindowMesh, OfAForeignFormatIsGivenUpWhenTheImportIsCancelled) {
    Show();
    std::string text = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    for (int i = 0; i < 400'000; ++i) text += "f 1 2 3\n";
    WriteText(m_folder / "a.obj", text);
    m_window->OpenFiles({m_folder / "a.obj"});
    m_window->CancelImport();
    WaitForImports();
    EXPECT_EQ(Rows(), std::vector<std::string>());
    EXPECT_NE(Messages().find("a.obj: not opened, cancelled"), std::string::npos) << Messages();
}

TEST_F(MainWindowMesh, NamesAnObjectWithoutANameByItsFileAlsoAfterAFileThatAddedNothing) {
    Show();
    WriteText(m_folder / "bad.ply", "no mesh at all");
    WriteStl(m_folder / "good.stl");
    Import({m_folder / "bad.ply", m_folder / "good.stl"});
    ASSERT_EQ(Rows(), std::vector<std::string>{"good.stl"});
    EXPECT_EQ(m_window->Objects().topLevelItem(0)->toolTip(ObjectList::kName).section('\n', 0, 0).toStdString(),
              m_folder / "good.stl");
}

TEST_F(MainWindowMesh, ShowsAMeshFittedIntoTheWindow) {
    WriteStl(m_folder / "a.stl");
    HostOptions options;
    options.files = {m_folder / "a.stl"};
    options.view = KV_ScenePane::ViewObliqueZUp;  // a corner of the tetrahedron is in the middle
    Show(options);
    ASSERT_TRUE(WaitUntil([&] { return !Rows().empty(); }));
    EXPECT_NE(MiddlePixel(), kBackground);
}

TEST_F(MainWindowMesh, OpensDroppedMeshes) {
    Show();
    WriteStl(m_folder / "a.stl");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(m_folder / "a.stl"))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window.get(), &drop);
    WaitForImports();
    EXPECT_EQ(Rows(), std::vector<std::string>{"a.stl"});
}

TEST_F(MainWindowMesh, OffersMeshesAndScansInItsDialog) {
    Show();
    WriteStl(m_folder / "a.stl");
    QStringList filters;
    const DialogAnswer<QFileDialog> answer([&](QFileDialog& dialog) {
        filters = dialog.nameFilters();
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(m_folder / "a.stl"));
        static_cast<QDialog&>(dialog).accept();
    });
    Trigger("Open...");
    ASSERT_TRUE(answer.WasShown());
    for (const char* const type : {"*.pcm", "*.pax", "*.xdt", "*.ply", "*.stl", "*.hps", "*.ois", "*.msh"})
        EXPECT_TRUE(filters.value(0).contains(type)) << type;
    WaitForImports();
    EXPECT_EQ(Rows(), std::vector<std::string>{"a.stl"});
}

TEST_F(MainWindowMesh, ReportsAFileThatAddedNothingInOneLineAndKeepsTheScene) {
    Show();
    WriteStl(m_folder / "good.stl");
    WriteText(m_folder / "short.ply", PlyHeader(4, 1) + "0 0 0\n1 0 0\n1 1 0\n");
    WriteText(m_folder / "none.hps", "no mesh at all");
    std::vector<std::string> failed;  // what the command line prints
    QObject::connect(m_window.get(), &MainWindow::FileFailed, [&](const std::string& file, const std::string& reason) {
        EXPECT_EQ(reason.find(file), std::string::npos) << reason;
        failed.push_back(file);
    });
    Import({m_folder / "good.stl", m_folder / "short.ply", m_folder / "none.hps"});
    EXPECT_EQ(Rows(), std::vector<std::string>{"good.stl"});
    EXPECT_EQ(ObjectsInViewer(), 1);
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    EXPECT_EQ(failed, (std::vector<std::string>{m_folder / "short.ply", m_folder / "none.hps"}));
    const QStringList lines = m_window->Messages().toPlainText().split('\n');
    ASSERT_EQ(lines.size(), 2) << Messages();
    const auto holds = [](const QString& line, const std::string& text) {
        return line.count(QString::fromStdString(text)) == 1;
    };
    EXPECT_TRUE(holds(lines[0], (m_folder / "short.ply") + ": nothing added: ")) << lines[0].toStdString();
    EXPECT_TRUE(holds(lines[0], m_folder / "short.ply")) << lines[0].toStdString();
    EXPECT_TRUE(holds(lines[0], "the file is cut short")) << lines[0].toStdString();
    EXPECT_TRUE(holds(lines[1], m_folder / "none.hps")) << lines[1].toStdString();
    EXPECT_TRUE(holds(lines[1], "this is no hps file, or it is damaged")) << lines[1].toStdString();
}

// ---- export

TEST_F(MainWindowMesh, ExportsTheObjectOfTheCurrentRow) {
    Show();
    WriteStl(m_folder / "a.stl");
    WriteXdt(m_folder / "b.xdt", 3, 2);
    Import({m_folder / "a.stl", m_folder / "b.xdt"});
    Select(1);
    (void)Export(m_folder / "out.ply");
    EXPECT_EQ(Messages(), (m_folder / "out.ply") + ": export of b.xdt");
    m_window->ClearScene();
    Import({m_folder / "out.ply"});
    ASSERT_EQ(Rows(), std::vector<std::string>{"out.ply"});
    EXPECT_EQ(m_window->Objects().topLevelItem(0)->text(ObjectList::kVertices), "6");
}

TEST_F(MainWindowMesh, ExportsTheOnlyObjectWithoutASelection) {
    Show();
    WriteStl(m_folder / "a.stl");
    Import({m_folder / "a.stl"});
    m_window->Objects().setCurrentItem(nullptr);
    (void)Export(m_folder / "out.hps");
    EXPECT_EQ(Messages(), (m_folder / "out.hps") + ": export of a.stl");
}

TEST_F(MainWindowMesh, AsksToSelectOneOfSeveralObjects) {
    Show();
    Trigger("Export selected object...");
    EXPECT_EQ(Messages(), "Nothing exported: there is no object.");
    WriteStl(m_folder / "a.stl");
    Import({m_folder / "a.stl", m_folder / "a.stl"});
    m_window->Objects().setCurrentItem(nullptr);
    m_window->Messages().clear();
    Trigger("Export selected object...");
    EXPECT_EQ(Messages(), "Nothing exported: select an object in the list first.");
}

TEST_F(MainWindowMesh, ProposesTheObjectsNameWithTheExtensionOfTheFilter) {
    Show();
    WriteXdt(m_folder / "left.v2.xdt", 3, 2);
    WriteStl(m_folder / "b.stl");
    Import({m_folder / "left.v2.xdt", m_folder / "b.stl"});
    Select(0);
    EXPECT_EQ(Export(m_folder / "1.ply"), "left.v2.ply");
    EXPECT_EQ(Export(m_folder / "2.ply", "STL meshes (*.stl)"), "left.v2.stl");
    Select(1);
    EXPECT_EQ(Export(m_folder / "3.ply", "HPS meshes (*.hps)"), "b.hps");
}

TEST_F(MainWindowMesh, AddsTheExtensionOfTheFilterToANameWithoutOne) {
    Show();
    WriteStl(m_folder / "a.stl");
    Import({m_folder / "a.stl"});
    (void)Export(m_folder / "out", "STL meshes (*.stl)");
    EXPECT_EQ(Messages(), (m_folder / "out.stl") + ": export of a.stl");
}

TEST_F(MainWindowMesh, ReportsAnExportToAnUnknownExtension) {
    Show();
    WriteStl(m_folder / "a.stl");
    Import({m_folder / "a.stl"});
    (void)Export(m_folder / "out.obj");
    EXPECT_EQ(Messages(), (m_folder / "out.obj") + ": not written: only ply, stl and hps files can be written");
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(MainWindowMesh, ReportsAnExportThatCannotBeWritten) {
    Show();
    WriteStl(m_folder / "a.stl");
    Import({m_folder / "a.stl"});
    for (const char* const name : {"no/out.ply", "no/out.stl", "no/out.hps"}) {
        m_window->Messages().clear();
        const std::string path = m_folder / name, start = path + ": not written: ";
        EXPECT_FALSE(m_window->ExportObjectTo(0, path));
        EXPECT_EQ(Messages().substr(0, start.size()), start);
        EXPECT_GT(Messages().size(), start.size());
        EXPECT_EQ(m_window->Messages().toPlainText().count('\n'), 0) << Messages();
    }
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(MainWindowMesh, AsksBeforeAnExportOverwritesAFile) {
    Show();
    WriteStl(m_folder / "a.stl");
    WriteText(m_folder / "out.ply", "old");
    Import({m_folder / "a.stl"});
    const DialogAnswer<QMessageBox> question([](QMessageBox& box) { box.button(QMessageBox::No)->click(); });
    (void)Export(m_folder / "out.ply");
    EXPECT_TRUE(question.WasShown());
    EXPECT_EQ(ReadBytes(m_folder / "out.ply").size(), 3u);
}

TEST_F(MainWindowMesh, ExportsByItsShortcutButNotDuringAnImport) {
    Show();
    QAction& action = MenuAction("Export selected object...");
    EXPECT_EQ(action.shortcut(), QKeySequence(Qt::CTRL | Qt::Key_E));
    m_window->OpenFiles(ManyPcms(4));
    EXPECT_FALSE(action.isEnabled());
    EXPECT_FALSE(m_window->ExportObjectTo(0, m_folder / "out.ply"));
    WaitForImports();
    EXPECT_TRUE(action.isEnabled());
}

TEST_F(MainWindowMesh, ExportsNothingForAnIndexOutsideTheList) {
    Show();
    EXPECT_FALSE(m_window->ExportObjectTo(0, m_folder / "out.ply"));
    EXPECT_FALSE(m_window->ExportObjectTo(-1, m_folder / "out.ply"));
    EXPECT_EQ(m_folder.FileCount(), 0u);
}

}  // namespace
