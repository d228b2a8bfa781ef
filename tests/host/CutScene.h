// Runs with lassos over flat grids whose points have known pixels.
#pragma once
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <array>
#include <string>
#include <vector>

#include "Headless.h"
#include "MSRDLL/PcmFile.h"
#include "host/HeadlessRuns.h"

/// The lasso of a text, which must be one.
inline LassoCut Lasso(const std::string& text) {
    const auto lasso = ParseLasso(text);
    EXPECT_TRUE(std::holds_alternative<LassoCut>(lasso)) << text;
    return std::holds_alternative<LassoCut>(lasso) ? std::get<LassoCut>(lasso) : LassoCut{};
}

/// A flat grid with a distance of 1 between its points, seen by a pcm file.
struct CutGrid {
    int columns = 11, rows = 11;
    /// Of the first point.
    float x = 0, y = 0, z = 0;
    /// Of each pixel.
    float confidence = 1.0f;
    std::uint8_t classOfPixels = 10;
};

inline void WriteCutGrid(const std::string& path, const CutGrid& grid) {
    std::vector<float> points = FlatGrid(grid.columns, grid.rows, grid.z, 1000.0f);
    for (std::size_t i = 0; i < points.size(); i += 3) {
        points[i] += 1000.0f * grid.x;
        points[i + 1] += 1000.0f * grid.y;
    }
    const std::vector<float> confidences(points.size() / 3, grid.confidence);
    const std::vector<std::uint8_t> classes(points.size() / 3, grid.classOfPixels);
    const float trafo[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    MsrStorage::PcmView view;
    view.m_iWidth = grid.columns;
    view.m_iHeight = grid.rows;
    view.m_pPoints = points.data();
    view.m_pConfidence = confidences.data();
    view.m_pClassification = classes.data();
    view.m_pTrafo = trafo;
    MsrStorage::WritePcmFile(path, view);
}

/// The classes of the pixels of a pcm file, row by row.
inline std::vector<int> ClassesOf(const std::string& path) {
    const MsrStorage::PcmMeasurement measurement = MsrStorage::ReadPcmFile(path);
    const auto count = static_cast<std::size_t>(measurement.m_iWidth) * static_cast<std::size_t>(measurement.m_iHeight);
    return {measurement.m_pClassification.get(), measurement.m_pClassification.get() + count};
}

/// Around the columns 0 to 5 of the grid below, whose last one is at pixel 100 and the next one at 114. Freehand
/// points must not lie at the border of the window.
inline const std::string kLeftHalf = ":0.02,0.02;0.535,0.02;0.535,0.98;0.02,0.98";

struct CutInfoRun {
    int status = -1;
    std::string err;
    /// Of each object.
    std::vector<int> vertices, triangles;
    /// "MODE yes" or "MODE no" of each lasso.
    std::vector<std::string> cuts;
};

/// A viewer of 200 x 200 pixels, seen from +Z, and an 11 x 11 grid a.pcm from (0, 0) to (10, 10): its diagonal, 14.14,
/// fills a side of the window, so that column c is at pixel 100 + 14.14 (c - 5) and row r at 100 - 14.14 (r - 5).
class CutRuns : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        WriteCutGrid(m_folder / "a.pcm", {});
        m_options.width = m_options.height = 200;
        m_options.files = {m_folder / "a.pcm"};
        m_options.picturePath = m_folder / "a.png";
    }
    void SetCuts(const std::vector<std::string>& lassos) {
        m_options.cuts.clear();
        for (const std::string& lasso : lassos) m_options.cuts.push_back(Lasso(lasso));
    }
    /// --info --json.
    [[nodiscard]] CutInfoRun Info() const { return InfoWith(m_options); }
    [[nodiscard]] static CutInfoRun InfoWith(HostOptions options) {
        options.json = true;
        const Printed out, err;
        CutInfoRun run;
        run.status = RunInfo(options, out, err);
        run.err = err.Text();
        QJsonParseError error;
        const QJsonObject json = QJsonDocument::fromJson(QByteArray::fromStdString(out.Text()), &error).object();
        EXPECT_EQ(error.error, QJsonParseError::NoError) << out.Text();
        for (const auto& object : json.value("objects").toArray()) {
            run.vertices.push_back(object.toObject().value("vertices").toInt());
            run.triangles.push_back(object.toObject().value("triangles").toInt());
        }
        for (const auto& cut : json.value("cuts").toArray())
            run.cuts.push_back(cut.toObject().value("mode").toString().toStdString() +
                               (cut.toObject().value("changed").toBool() ? " yes" : " no"));
        return run;
    }
    /// --info without lassos and plane.
    [[nodiscard]] static CutInfoRun InfoOf(const std::vector<std::string>& files) {
        HostOptions options;
        options.files = files;
        return InfoWith(options);
    }
    /// --screenshot.
    [[nodiscard]] Png Picture(int status = kExitGood, const std::string& warnings = "") const {
        const Printed err;
        EXPECT_EQ(RunScreenshot(m_options, err), status);
        EXPECT_EQ(err.Text(), warnings);
        return ReadPng(m_options.picturePath);
    }
    struct SaveRun {
        int status = -1;
        std::string out, err;
    };
    /// --save-cuts.
    [[nodiscard]] SaveRun Save() const {
        const Printed out, err;
        SaveRun run;
        run.status = RunSaveCuts(m_options, out, err);
        run.out = out.Text();
        run.err = err.Text();
        return run;
    }

    ScratchFolder m_folder;
    HostOptions m_options;
};
