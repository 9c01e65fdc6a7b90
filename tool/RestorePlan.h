// What acg restore writes on a card, and what it can't.
#pragma once

#include "tool/CommandLine.h"
#include "tool/DumpFile.h"
#include "tool/WholeCard.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace acg::tool
{

/// Blocks of one sector that are written with one login: data blocks, or the trailer alone.
struct RestoreStep {
    int32_t Sector;
    LoginKey Login;
    std::vector<int32_t> Blocks;

    [[nodiscard]] bool IsOfTrailer() const;
    [[nodiscard]] std::string Name() const; ///< "blocks 4-6", or "the trailer of sector 1"
};

/// The key is wholly known. Zeros count as unknown: a file of raw bytes has them for a key that isn't known.
[[nodiscard]] std::optional<Key> KeyAIn(const DumpedBlock& trailer);
[[nodiscard]] std::optional<Key> KeyBIn(const DumpedBlock& trailer);

/// Key A, and key B if it is a key.
[[nodiscard]] std::vector<LoginKey> LoginsOf(const Trailer& trailer);

/// The access bits of a trailer are known, and contradict their inverted copies.
[[nodiscard]] bool IsContradictory(const DumpedBlock& trailer);

/// Only what differs between dump and card is written, and never block 0.
class RestorePlan
{
public:
    /// dump outlives the plan.
    RestorePlan(const Dump& dump, bool hasTrailers) : m_dump(dump), m_hasTrailers(hasTrailers) {}

    /// contents: of the sector on the card, as these keys read it.
    void Add(int32_t sector, const SectorContents& contents, const KeyRing& keys);

    /// All data blocks with the rights that the card has, then the trailers, then the data blocks that only
    /// the new trailers let a key write.
    [[nodiscard]] std::vector<RestoreStep> Steps() const;

    /// Shows what the steps change, then what is left out and why: that is said by Output::Problem.
    void Show(Output& out) const;

    /// Something that differs, or may differ, is left out.
    [[nodiscard]] bool LeavesOut() const { return !m_leftOut.empty(); }
    /// Sectors whose rights nobody could change again, though somebody can now.
    [[nodiscard]] const std::vector<int32_t>& Frozen() const { return m_frozen; }

private:
    struct LeftOut {
        std::vector<int32_t> Blocks;
        std::string Reason;
    };

    /// Whether the trailer is to be written.
    bool AddTrailer(int32_t sector, const DumpedBlock& onCard, const std::vector<LoginKey>& logins);
    void AddData(int32_t number, const DumpedBlock& onCard, const ConditionBytes& conditions,
                 const std::vector<LoginKey>& logins, bool replacesTrailer);
    void LeaveOut(int32_t number, const std::string& reason);

    const Dump& m_dump;
    bool m_hasTrailers;
    Dump m_card; ///< by block number; what hasn't been read is unknown
    std::vector<RestoreStep> m_data;
    std::vector<RestoreStep> m_trailers;
    std::vector<RestoreStep> m_lateData;
    std::vector<LeftOut> m_leftOut;
    std::vector<int32_t> m_frozen;
};

} // namespace acg::tool
