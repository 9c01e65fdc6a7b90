// What is to be written on a card so that it holds a dump, or part of one; and the writing itself.
#pragma once

#include "tool/CommandLine.h"
#include "tool/DumpFile.h"
#include "tool/WholeCard.h"
#include "tool/WriteReport.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace acg::tool
{

/// Blocks of one sector that are written with one login: data blocks, or the trailer alone.
struct WriteStep {
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

/// Which blocks of a dump a card is to hold.
enum class Asked {
    Data,  ///< all data blocks
    All,   ///< and all trailers
    Known, ///< those of which something is known
};

/// Only what differs between dump and card is written, and never block 0.
class WritePlan
{
public:
    /// dump outlives the plan.
    WritePlan(const Dump& dump, Asked asked) : m_dump(dump), m_asked(asked) {}

    /// contents: of the sector on the card, as these keys read it.
    void Add(int32_t sector, const SectorContents& contents, const KeyRing& keys);

    /// All data blocks with the rights that the card has, then the trailers, then the data blocks that only
    /// the new trailers let a key write.
    [[nodiscard]] std::vector<WriteStep> Steps() const;

    /// Shows what the steps change, then what is left out and why: that is said by Output::Problem.
    void Show(Output& out) const;

    /// Something that differs, or may differ, is left out.
    [[nodiscard]] bool LeavesOut() const { return !m_leftOut.empty(); }
    /// A line for each of it, with the reason.
    [[nodiscard]] std::vector<std::string> LeftOut() const;
    /// Sectors whose rights nobody could change again, though somebody can now.
    [[nodiscard]] const std::vector<int32_t>& Frozen() const { return m_frozen; }

private:
    struct Omission {
        std::vector<int32_t> Blocks;
        std::string Reason;
    };

    /// Whether the trailer is to be written.
    bool AddTrailer(int32_t sector, const DumpedBlock& onCard, const std::vector<LoginKey>& logins);
    void AddData(int32_t number, const DumpedBlock& onCard, const ConditionBytes& conditions,
                 const std::vector<LoginKey>& logins, bool replacesTrailer);
    void LeaveOut(int32_t number, const std::string& reason);
    [[nodiscard]] bool IsAskedFor(int32_t number) const;

    const Dump& m_dump;
    Asked m_asked;
    Dump m_card; ///< by block number; what hasn't been read is unknown
    std::vector<WriteStep> m_data;
    std::vector<WriteStep> m_trailers;
    std::vector<WriteStep> m_lateData;
    std::vector<Omission> m_leftOut;
    std::vector<int32_t> m_frozen;
};

/// Writes a step's blocks, the next part of the report, and reads them back, a trailer with the keys that it
/// has. Throws OtherFailure if they hold something else, and as WriteReport does.
void WriteBlocks(CardSession& card, const WriteStep& step, const Dump& wanted, WriteReport& report);

} // namespace acg::tool
