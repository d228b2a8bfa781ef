// Rigid transforms of alignments: of a mouse step, of pairs of points, and their application to objects.
#pragma once
#include <optional>
#include <span>

#include "KV_ScenePane/Alignment.h"
#include "geometry/CACADQTrafo.h"
#include "geometry/Mesh.h"
#include "geometry/Vector3.h"

[[nodiscard]] inline Float3 PointOf(const Vertex& vertex) { return {vertex.x, vertex.y, vertex.z}; }
/// As a host gets to know a pick.
[[nodiscard]] KV_ScenePane::AlignmentPoint AlignmentPointOf(const Vertex& pick);

/// Right-handed about @p axis through @p pivot, in double.
/// @param axis   of length 1; another length gives the rotation that CACADQTrafo::Set() makes of the matrix
/// @param angle  radians
[[nodiscard]] CACADQTrafo RotationAbout(const Double3& axis, double angle, const Double3& pivot);
[[nodiscard]] CACADQTrafo TranslationBy(const Double3& offset);
/// @p second after @p first.
[[nodiscard]] CACADQTrafo Compose(const CACADQTrafo& second, const CACADQTrafo& first);
[[nodiscard]] bool IsFinite(const CACADQTrafo& trafo);

/// Transforms the vertices and records it in m_Trafo; box, centre and buffers follow.
void MoveObject(Mesh& mesh, const CACADQTrafo& trafo);

/// Turns the source normal into the target normal by the shortest way and moves the source point to the target point.
/// Opposite normals have no shortest way, and a normal of 0 has no direction: half a turn about the x axis of the world
/// then, whatever the normals are. Opposite normals along x are therefore not brought together: that turn leaves the
/// source normal as it is.
[[nodiscard]] CACADQTrafo AlignSinglePair(const Vertex& source, const Vertex& target);
/// The transform of source points to target points: of one pair by AlignSinglePair(), of more by
/// LANDLL_PickPointMatching().
/// @param target  as many as @p source, at least one
/// @return empty when there is none, or none that is finite
[[nodiscard]] std::optional<CACADQTrafo> MatchPoints(std::span<const Vertex> source, std::span<const Vertex> target);

/// What a host gets to know about an alignment by points. @param trafo  of MatchPoints() for these points
[[nodiscard]] KV_ScenePane::AlignmentResult DescribeAlignment(std::span<const Vertex> source,
                                                              std::span<const Vertex> target,
                                                              const std::optional<CACADQTrafo>& trafo);
