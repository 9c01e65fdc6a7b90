// acg issue: a card for each row of a table.
#include "acg/cards/BlockAddress.h"
#include "acg/cards/TrailerLayout.h"
#include "tool/Agreement.h"
#include "tool/Blocks.h"
#include "tool/CardLedger.h"
#include "tool/CardWait.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WritePlan.h"

#include <algorithm>
#include <chrono>

namespace acg::tool
{

namespace
{

struct Options {
    std::string File;
    KeyOptions Key;
    OrderOptions Orders;
    std::string Ignored;     ///< --ignore-columns
    bool IsCheck = false;    ///< --check
    bool IsResumed = false;  ///< --resume
    bool GoesOn = false;     ///< --continue
    bool IsAgreedTo = false; ///< --yes
};

using Step = JournalEntry::Step;

std::string CountOf(size_t cards)
{
    return std::to_string(cards) + (cards == 1 ? " card" : " cards");
}

/// The sectors of which something is written.
std::vector<int32_t> SectorsOf(const Dump& wanted)
{
    std::vector<int32_t> sectors;
    for (size_t at = 0; at < wanted.size(); ++at) {
        const int32_t sector = SectorOf(static_cast<int32_t>(at));
        if (wanted[at].Known != 0 && (sectors.empty() || sectors.back() != sector)) {
            sectors.push_back(sector);
        }
    }
    return sectors;
}

/// Which keys a card has.
enum class CardState {
    New,   ///< those that it came with
    Begun, ///< those, and perhaps new ones already
    Written
};

void AppendNew(const KeyRing& more, KeyRing& keys)
{
    for (const NamedKey& key : more) {
        if (std::ranges::find(keys, key.Bytes, &NamedKey::Bytes) == keys.end()) {
            keys.push_back(key);
        }
    }
}

/// What may open a sector, the likeliest first.
KeyRing KeysFor(const CardOrder& order, int32_t sector, CardState state, const KeyRing& given)
{
    KeyRing keys;
    const DumpedBlock& trailer = order.Wanted[static_cast<size_t>(TrailerBlock(sector))];
    for (const std::optional<Key>& key : {KeyAIn(trailer), KeyBIn(trailer)}) {
        if (key && state != CardState::New) {
            AppendNew({{*key, "the new key"}}, keys);
        }
    }
    if (state != CardState::Written || trailer.Known == 0) {
        const auto ofRow = order.Keys.find(sector);
        AppendNew(ofRow != order.Keys.end() ? ofRow->second : given, keys);
    }
    return keys;
}

/// Byte 9 stays the card's if the order leaves it open.
void Complete(DumpedBlock& trailer, const DumpedBlock& onCard)
{
    constexpr uint16_t Open = BitsOf(UserByteAt, 1);
    if ((trailer.Known | Open) == WholeBlock && (onCard.Known & ~trailer.Known & Open) != 0) {
        trailer.Bytes[UserByteAt] = onCard.Bytes[UserByteAt];
        trailer.Known = WholeBlock;
    }
}

/// Adds what differs in these sectors of the card from the wanted blocks, and completes those.
void Look(CardSession& card, const CardOrder& order, CardState state, const KeyRing& given, Dump& wanted,
          WritePlan& plan)
{
    const ProgressBar bar(static_cast<int>(wanted.size()));
    for (const int32_t sector : SectorsOf(wanted)) {
        const KeyRing keys = KeysFor(order, sector, state, given);
        const SectorContents contents = ReadSector(card, sector, keys, bar);
        Complete(wanted[static_cast<size_t>(TrailerBlock(sector))], contents.Blocks.back());
        plan.Add(sector, contents, keys);
    }
    if (plan.LeavesOut()) {
        std::string text;
        for (const std::string& line : plan.LeftOut()) {
            text += (text.empty() ? "" : "\n  ") + line;
        }
        throw OtherFailure{text};
    }
}

/// report: has one part, for all of it. next: the command that completes the card.
void WriteCard(CardSession& card, const CardOrder& order, CardState state, const KeyRing& given,
               const std::string& next, WriteReport& report)
{
    Dump wanted = order.Wanted;
    WritePlan plan(wanted, Asked::Known);
    Look(card, order, state, given, wanted, plan);
    report.Clear();
    const std::vector<WriteStep> steps = plan.Steps();
    for (const WriteStep& step : steps) {
        report.Add(step.Name(), next);
    }
    card.Select();
    for (const WriteStep& step : steps) {
        WriteBlocks(card, step, wanted, report);
    }
    // Under the new rights, and with the new keys.
    Dump ofNewTrailers(wanted.size());
    for (const WriteStep& step : steps) {
        const int32_t last = TrailerBlock(step.Sector);
        for (int32_t number = TrailerBlock(step.Sector - 1) + 1; step.IsOfTrailer() && number <= last;
             ++number) {
            ofNewTrailers[static_cast<size_t>(number)] = wanted[static_cast<size_t>(number)];
        }
    }
    WritePlan remaining(ofNewTrailers, Asked::Known);
    Look(card, order, CardState::Written, given, ofNewTrailers, remaining);
    if (!remaining.Steps().empty()) {
        throw OtherFailure{remaining.Steps().front().Name() +
                           ": it doesn't read back as written with the new keys"};
    }
    card.Select();
}

/// One run over a table.
class IssueRun
{
public:
    IssueRun(const Options& options, KeyRing keys, CardLedger& ledger, Output& out)
        : m_options(options), m_keys(std::move(keys)), m_ledger(ledger), m_out(out)
    {
    }

    /// All rows that aren't done. Returns the exit status.
    int Run(CardSession& card);
    void Summarise();

private:
    enum class Answer : char {
        Again = 'a',
        Skip = 's',
        End = 'e'
    };

    [[nodiscard]] Answer AfterFailure() const;
    /// Whether the card was written.
    [[nodiscard]] bool IssueCard(CardSession& card, const CardOrder& order);
    void WaitForCardOf(CardSession& card, const CardOrder& order);
    void SayDone(const CardOrder& order, const std::string& serial);
    void Note(const CardOrder& order, const std::string& serial, Step step, const std::string& reason = {});

    const Options& m_options;
    const KeyRing m_keys;
    CardLedger& m_ledger;
    Output& m_out;
    std::map<int32_t, std::string> m_reasons; ///< by row, why it has failed
    int m_count = 0;                          ///< of the cards written
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

int IssueRun::Run(CardSession& card)
{
    bool isFirst = true;
    for (const CardOrder& order : m_ledger.Orders()) {
        if (m_ledger.StateOf(order).IsDone) {
            continue;
        }
        if (!isFirst) {
            WaitUntilGone(card);
        }
        isFirst = false;
        Answer answer = Answer::Again;
        while (answer == Answer::Again && !IssueCard(card, order)) {
            answer = AfterFailure();
        }
        if (answer == Answer::End) {
            break;
        }
        if (answer == Answer::Skip) {
            m_ledger.Note(order, m_ledger.StateOf(order).Serial, Step::CardSkipped);
        }
    }
    return m_ledger.CountLeft() == 0 ? Done : Failed;
}

IssueRun::Answer IssueRun::AfterFailure() const
{
    return m_options.GoesOn          ? Answer::Skip
           : !IsSomebodyToAsk(m_out) ? Answer::End
                                     : static_cast<Answer>(Ask("Again, skip or end? Type a, s or e:", "ase"));
}

void IssueRun::WaitForCardOf(CardSession& card, const CardOrder& order)
{
    const std::string begun = m_ledger.StateOf(order).Serial;
    const std::string& wanted = begun.empty() ? order.SerialNumber : begun;
    std::string name = m_ledger.NameOf(order.Row);
    name.front() = 'C';
    m_out.Print(name + (order.Note.empty() ? "" : ": " + order.Note) +
                (wanted.empty()  ? ""
                 : begun.empty() ? ": " + wanted
                                 : ": " + wanted + ", which was begun and may be written in part"));
    for (;; WaitUntilGone(card)) {
        WaitForCard(card);
        const std::string& serial = card.SerialNumber();
        const int32_t owner = m_ledger.OtherOwner(serial, order.Row);
        if (owner == 0 && (wanted.empty() || wanted == serial)) {
            return;
        }
        const std::string what = owner != 0 ? "is " + m_ledger.NameOf(owner) : "isn't " + wanted;
        m_out.Problem(Format("%s %s; remove it", serial.c_str(), what.c_str()));
    }
}

bool IssueRun::IssueCard(CardSession& card, const CardOrder& order)
{
    const bool wasBegun = !m_ledger.StateOf(order).Serial.empty();
    WaitForCardOf(card, order);
    const std::string serial = card.SerialNumber();
    m_out.Json.update({{"row", order.Row}, {"note", order.Note}, {"result", "failed"}});
    std::string next = "acg issue " + MaskKeys(m_options.File);
    for (const std::string& column : m_options.Orders.Columns) {
        next += Format(" --set \"%s\"", MaskKeys(column).c_str());
    }
    WriteReport report(m_out);
    report.Add("card " + serial, next);
    report.BeginCard(card);
    m_ledger.Note(order, serial, Step::CardBegun);
    Ending ending{};
    try {
        WriteCard(card, order, wasBegun ? CardState::Begun : CardState::New, m_keys, next, report);
    } catch (...) {
        ending = CurrentEnding();
    }
    if (ending.Status == Done) {
        m_out.Outcome.clear();
        m_ledger.Note(order, serial, Step::CardDone);
        SayDone(order, serial);
        return true;
    }
    // A card that nothing was written on is free for any row.
    const std::string reason = ending.Text.substr(0, ending.Text.find('\n'));
    m_ledger.Note(order, !wasBegun && report.HasWrittenNothing() ? "" : serial, Step::CardFailed, reason);
    m_reasons[order.Row] = reason;
    if (ending.Status == Interrupted) {
        throw Interruption{};
    }
    m_out.Json["failure"] = ending.Failure;
    PrintProblem(m_ledger.NameOf(order.Row) + ": " + ending.Text + m_out.Outcome);
    m_out.Outcome.clear();
    static_cast<void>(m_out.Finish());
    return false;
}

void IssueRun::SayDone(const CardOrder& order, const std::string& serial)
{
    ++m_count;
    m_reasons.erase(order.Row);
    const std::chrono::duration<double, std::ratio<60>> elapsed = std::chrono::steady_clock::now() - m_start;
    const int left = m_ledger.CountLeft();
    m_out.Print(Format("%s: done, %s, %d left, %.0f cards a minute", m_ledger.NameOf(order.Row).c_str(),
                       serial.c_str(), left, m_count / elapsed.count()));
    m_out.Json["result"] = "done";
    m_out.Json["left"] = left;
    if (!m_out.Finish()) {
        throw OtherFailure{"the rest isn't written"};
    }
}

void IssueRun::Summarise()
{
    const size_t count = m_ledger.Orders().size();
    const int left = m_ledger.CountLeft();
    const int done = static_cast<int>(count) - left;
    m_out.Print(Format("Done: %d of %s.", done, CountOf(count).c_str()));
    m_out.Json["done"] = done;
    m_out.Json["left"] = left;
    m_out.Json["failed"] = JsonObject::array();
    for (const auto& [row, reason] : m_reasons) {
        m_out.Print(Format("  row %d: ", row) + reason);
        m_out.Json["failed"].push_back({{"row", row}, {"reason", reason}});
    }
}

int RunIssue(const Options& options, Context& context)
{
    Output& out = context.Out;
    OrderOptions orderOptions = options.Orders;
    if (!options.Ignored.empty()) {
        for (const std::string_view name : Split(options.Ignored, ',')) {
            orderOptions.Ignored.emplace_back(name);
        }
    }
    const Table table(options.File);
    std::vector<CardOrder> orders = ReadOrders(table, orderOptions);
    KeyRing keys = ReadKeyRing(options.Key);
    if (options.IsCheck) {
        out.Print(CountOf(orders.size()) + " can be written; nothing has been.");
        out.Json["cards"] = orders.size();
        return Done;
    }
    if (!options.IsAgreedTo) {
        RequireSomebodyToAsk(out, "--check");
    }
    // What is given once for all rows counts as a part of the table.
    uint64_t digest = DigestOf(orderOptions.Encoding, table.Digest());
    for (const std::string& column : orderOptions.Columns) {
        digest = DigestOf(column + '\n', digest);
    }
    CardLedger ledger(options.File, digest, std::move(orders),
                      options.IsResumed ? CardLedger::Changed::Accepted : CardLedger::Changed::Refused);
    IssueRun run(options, std::move(keys), ledger, out);
    if (const int left = ledger.CountLeft()) {
        if (!options.IsAgreedTo && !IsAgreedTo(CountOf(static_cast<size_t>(left)))) {
            throw OtherFailure{"not agreed to"};
        }
        CardSession card(context.Reader, CardWait::None);
        try {
            const int status = run.Run(card);
            run.Summarise();
            return status;
        } catch (...) {
            run.Summarise();
            throw;
        }
    }
    run.Summarise();
    return Done;
}

} // namespace

void AddIssue(CommandLine& commands)
{
    auto [command, options] =
        commands.Add("issue", "Writes a stack of cards, one for each row of a table",
                     "acg issue cards.csv --set \"levels 1=r/rw,r/rw,r/rw,-/keys+bits\" --check", RunIssue);
    command.Argument("TABLE", options.File,
                     "A CSV file in UTF-8. Its first row names the columns: serial, note, block N, text N, "
                     "value N, key N; and of a new trailer key A N, key B N, levels N, bx N");
    AddKeyRingOptions(command, options.Key);
    command.List("--set", "NAME=CELL", options.Orders.Columns,
                 "A column with the same cell in each row; may be repeated. Put keys into the table "
                 "instead: see --key");
    command.Option("--ignore-columns", "LIST", options.Ignored, "Columns to ignore, separated by commas");
    command.Option("--encoding", "NAME", options.Orders.Encoding,
                   "Encoding of texts on the card: utf-8 (default), latin-1, or utf-16 (little-endian)");
    command.Flag("--check", options.IsCheck, "Check the whole table and exit; needs no reader");
    command.Flag("--resume", options.IsResumed,
                 "Continue although the table has changed: the rows already done remain valid");
    command.Flag("--continue", options.GoesOn, "After a failure, continue with the next card");
    command.Flag("--yes", options.IsAgreedTo, "Don't ask for confirmation");
    command.Flag("--for-good", options.Orders.IsForGood, "Allow changes that can never be undone");
}

} // namespace acg::tool
