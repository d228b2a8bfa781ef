// Which colour each object is shown in: that of its import, one of the palette, or the user's choice.
#pragma once
#include <QObject>
#include <cstdint>
#include <map>

#include "KV_ScenePane/ScenePane.h"
#include "SceneReport.h"

class ObjectList;

/// Objects whose vertices have colours are left alone: those are shown instead. On the thread of the viewer.
class ObjectColors : public QObject {
    Q_OBJECT
public:
    explicit ObjectColors(ObjectList& objects, QObject* parent = nullptr);

    /// @param viewer  outlives this, or null is passed before it ends
    void SetViewer(KV_ScenePane::ScenePane* viewer) { m_pViewer = viewer; }

    /// Adds the row of a new object of an import, after the rows of all objects before it, and gives the object its
    /// first colour. A frame is requested, none is drawn.
    /// @param object       as the viewer reports it after its import
    /// @param tellsApart   it is one of several files, and nobody has chosen a colour for scans: scans without colours
    ///                     get one of the palette each
    void AddImported(ObjectReport object, bool tellsApart);

    /// The user has chosen a colour.
    void Choose(int index, std::int32_t packed);
    /// Gives each object another colour of the palette, and scans of later imports, too.
    void ColorByObject();
    /// Takes the colours of the palette back: objects get those of their import, or what the user has chosen.
    void ColorAsImported();
    /// The list has no object any more.
    void OnSceneCleared();

private:
    void Show(int index, std::int32_t packed);
    /// The colour of the palette that the fewest objects have, the first of them.
    [[nodiscard]] std::int32_t FreeColor() const;

    ObjectList& m_objects;
    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    std::map<int, std::int32_t> m_own;  // by the id of the row: the colour without the palette
    bool m_bByObject = false;           // scans of later imports get colours of the palette, too
};
