// One table from the texts of the viewer and its libraries to sentences for an operator, and from these to another
// language. Standard error and JSON have the English sentences, the window the translated ones.
#pragma once
#include <span>
#include <string>
#include <string_view>

/// A text of the viewer and what an operator reads instead. Both may have the places %1 to %9: in the text such a place
/// matches any text that is not empty, in the sentence it is replaced by that text.
struct MessageRow {
    const char* text;
    const char* sentence;  ///< English; translated in the context "Messages"
};

/// All rows. Of several rows that match, the first one counts.
[[nodiscard]] std::span<const MessageRow> MessageRows();

/// The sentence for one line of the viewer. The name of a function at its start ("ImportPly(): ") is removed, and a
/// position in parentheses at its end is kept. A line that is in no row is returned unchanged but for that name.
[[nodiscard]] std::string PlainWords(std::string_view line);

/// PlainWords() of each line, joined by JoinLines(): for texts of several lines.
[[nodiscard]] std::string PlainLines(std::string_view text);

/// @p line in the language of the window. It is one sentence of the table or several with "; " between them, as
/// PlainWords() and PlainLines() return them; other texts stay as they are.
[[nodiscard]] std::string TranslatedWords(std::string_view line);

/// @p sentence with @p parts in its places %1, %2 ..., in English: for sentences that the program itself makes and that
/// TranslatedWords() must find in the table. @param sentence  of a row
[[nodiscard]] std::string FilledSentence(std::string_view sentence, std::span<const std::string> parts);

// Sentences about a grid of which no triangle is left; see host/GridCause.h.
extern const char kTooFarApart[];           ///< skip value, limit in mm
extern const char kTooFarApartAtAnySkip[];  ///< the same; skip 1 would leave no triangle either
extern const char kTooFewPerCell[];         ///< skip value, points that a cell needs
extern const char kAllSlivers[];            ///< least and largest angle in degrees
extern const char kNoNeighbours[];          ///< no place
extern const char kOneRow[];                ///< columns, rows
extern const char kOnlySkipRemoves[];       ///< skip value, triangles without it
extern const char kNoFiniteCoordinate[];    ///< no place
extern const char kSceneIsFull[];           ///< no place; see host/FileImport.h

// Sentences about a file that is not opened at all; see host/SceneFile.h.
extern const char kNoSuchFile[];   ///< no place
extern const char kIsFolder[];     ///< no place
extern const char kUnknownType[];  ///< the types that are known

// Sentences about files that scenepane-read reads; see host/ForeignReader.h.
extern const char kNoReader[];              ///< no place
extern const char kReaderNotStarted[];      ///< the system's reason: a lack of processes, memory or descriptors
extern const char kReaderDamaged[];         ///< the system's reason, any other
extern const char kReaderTooSlow[];         ///< seconds
extern const char kReaderResultTooLarge[];  ///< no place
extern const char kReaderCrashed[];         ///< how the process ended
extern const char kReaderFailed[];          ///< what is wrong with its result
extern const char kNoTemporaryFile[];       ///< no place; see host/TemporaryPly.h
extern const char kMeshWithImage[];         ///< no place
extern const char kPointsAlone[];           ///< no place

// Sentences about folders and other things that are opened.
extern const char kEmptyFolder[];   ///< no place
extern const char kUnreadFolder[];  ///< the system's reason
extern const char kFullFolder[];    ///< no place
extern const char kNoNeedles[];     ///< no place
