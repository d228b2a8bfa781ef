// The persisted properties of a viewer, and the exchange that reads or writes them: one pass in a fixed order, the same
// for every store. docs/formats/properties.md describes the stores byte by byte.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "KV_ScenePane/ScenePane.h"

/// Why a store was refused, as a sentence for the user without a line feed.
class PropertyStoreError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Version of the properties. A newer minor version has further properties after those of the former ones, a newer
/// major version is one that this code cannot read.
struct PropVersion {
    std::uint16_t major = 1, minor = 0;
};

/// One pass over the properties, which reads each of them from a store or writes it to one. Steps that read throw
/// PropertyStoreError.
class PropExchange {
public:
    PropExchange() = default;
    virtual ~PropExchange() = default;
    PropExchange(const PropExchange&) = delete;
    PropExchange& operator=(const PropExchange&) = delete;

    /// The first step. @param current  version of the properties that follow
    virtual void ExchangeVersion(PropVersion current) = 0;
    /// A property. @param value  is written to the store, or receives its value from there; @p start without one
    virtual void ExchangeBool(std::string_view name, bool& value, bool start) = 0;
    virtual void ExchangeShort(std::string_view name, std::int16_t& value, std::int16_t start) = 0;
    /// The last step.
    virtual void Finish() = 0;
};

/// Without a store: every property receives its start value.
class StartValueExchange final : public PropExchange {
public:
    void ExchangeVersion(PropVersion) override {}
    void ExchangeBool(std::string_view, bool& value, bool start) override { value = start; }
    void ExchangeShort(std::string_view, std::int16_t& value, std::int16_t start) override { value = start; }
    void Finish() override {}
};

/// An exchange that writes. No step throws PropertyStoreError.
class PropWriter : public PropExchange {
public:
    /// What was written; complete after Finish().
    [[nodiscard]] const std::string& Store() const { return m_sStore; }

protected:
    std::string m_sStore;
};

/// @param format  binary, else text
[[nodiscard]] std::unique_ptr<PropWriter> NewPropertyStore(KV_ScenePane::PropertyFormat format);

/// Larger stores are refused.
inline constexpr std::size_t kMaxPropertyStore = std::size_t{64} * 1024;

/// An exchange that reads a store of either format.
/// @param store  must outlive the exchange; untrusted
/// @throws PropertyStoreError for what is no store, and for more than kMaxPropertyStore bytes
[[nodiscard]] std::unique_ptr<PropExchange> OpenPropertyStore(std::string_view store);

/// The properties of a viewer that are persisted; all else lives as long as the viewer.
struct PersistedProperties {
    bool drawMosaic = false;
    std::int16_t drawMode = 0;  ///< any value
    bool moveReduced = false;
    bool operator==(const PersistedProperties&) const = default;
};

/// The pass over them: the version, which is 1.0, then each in its order. After an exception their values are
/// undefined.
void ExchangeProperties(PropExchange& exchange, PersistedProperties& properties);
