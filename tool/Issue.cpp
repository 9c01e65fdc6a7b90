// acg issue: a card for each row of a table.
#include "tool/Agreement.h"
#include "tool/CardLedger.h"
#include "tool/CardWait.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/OrderWriting.h"
#include "tool/Text.h"

#include <algorithm>
#include <chrono>
#include <functional>

namespace acg::tool
{

namespace
{

struct Options {
    std::string File;
    KeyOptions Key;
    OrderOptions Orders;
    std::string Ignored;     ///< --ignore-columns
    std::string GivenUp;     ///< --give-up
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

Ending EndingOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (...) {
        return CurrentEnding();
    }
    return {};
}

/// In a line.
std::string ReasonOf(const Ending& ending)
{
    const std::string meaning = ending.Failure.value("meaning", "");
    return ending.Text.substr(0, ending.Text.find('\n')) + (meaning.empty() ? "" : ": " + meaning);
}

/// One run over a table.
class IssueRun
{
public:
    IssueRun(const Options& options, KeyRing keys, CardLedger& ledger, Output& out)
        : m_options(options), m_keys(std::move(keys)), m_ledger(ledger), m_out(out)
    {
        for (const CardOrder& order : ledger.Orders()) {
            if (const std::string reason = ledger.StateOf(order).Reason; !reason.empty()) {
                m_reasons[order.Row] = reason;
            }
        }
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
    /// isNext: the last order's card may still lie there. Returns whether the card was written.
    [[nodiscard]] bool IssueCard(CardSession& card, const CardOrder& order, bool isNext);
    void WaitForCardOf(CardSession& card, const CardOrder& order);
    void SayDone(const CardOrder& order, const std::string& serial);
    void SayFailed(const CardOrder& order, const Ending& ending);

    const Options& m_options;
    const KeyRing m_keys;
    CardLedger& m_ledger;
    Output& m_out;
    std::map<int32_t, std::string> m_reasons;      ///< by row, why it isn't done
    int m_count = 0;                               ///< of the cards written
    std::chrono::steady_clock::time_point m_start; ///< when the first one was
};

int IssueRun::Run(CardSession& card)
{
    bool isNext = false;
    for (const CardOrder& order : m_ledger.Orders()) {
        if (m_ledger.StateOf(order).IsDone) {
            continue;
        }
        Answer answer = Answer::Again;
        for (; answer == Answer::Again && !IssueCard(card, order, isNext); isNext = false) {
            answer = AfterFailure();
        }
        isNext = true;
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
                                 : Format(": %s, which was begun and may be written in part. If it is lost, "
                                          "end this by Ctrl-C, and add --give-up %d",
                                          wanted.c_str(), order.Row)));
    for (;; WaitUntilGone(card)) {
        WaitForCard(card);
        const std::string& serial = card.SerialNumber();
        std::string reason = m_ledger.WhyNotFor(order.Row, serial);
        if (reason.empty() && !wanted.empty() && wanted != serial) {
            reason = "isn't " + wanted;
        }
        if (reason.empty()) {
            return;
        }
        m_out.Problem(Format("%s %s; remove it", serial.c_str(), reason.c_str()));
    }
}

bool IssueRun::IssueCard(CardSession& card, const CardOrder& order, bool isNext)
{
    m_out.Json.update({{"row", order.Row}, {"note", order.Note}, {"result", "failed"}});
    Ending ending = EndingOf([&] {
        if (isNext) {
            WaitUntilGone(card);
        }
        WaitForCardOf(card, order);
    });
    if (ending.Status != Done) {
        SayFailed(order, ending);
        return false;
    }
    const bool wasBegun = !m_ledger.StateOf(order).Serial.empty();
    const std::string serial = card.SerialNumber();
    WriteReport report(m_out);
    report.Add("card " + serial, NextOfOrder);
    report.BeginCard(card);
    m_ledger.Note(order, serial, Step::CardBegun);
    ending = EndingOf(
        [&] { WriteOrder(card, order, wasBegun ? CardState::Begun : CardState::New, m_keys, report); });
    if (ending.Status == Done) {
        m_reasons[order.Row] =
            "card " + serial + " is written, but not recorded as done; repeat the same command";
        m_ledger.Note(order, serial, Step::CardDone);
        m_out.Outcome.clear();
        SayDone(order, serial);
        return true;
    }
    const bool isFree = !wasBegun && report.HasWrittenNothing();
    if (!isFree && m_out.Json["next"].is_null()) {
        m_out.Json["next"] = NextOfOrder;
        m_out.Outcome += "\n  next      ";
        m_out.Outcome += NextOfOrder;
    }
    m_reasons[order.Row] = ReasonOf(ending);
    m_ledger.Note(order, isFree ? "" : serial, Step::CardFailed, m_reasons[order.Row]);
    SayFailed(order, ending);
    return false;
}

void IssueRun::SayFailed(const CardOrder& order, const Ending& ending)
{
    if (ending.Status == Interrupted) {
        throw Interruption{};
    }
    m_reasons[order.Row] = ReasonOf(ending);
    m_out.Json["failure"] = ending.Failure;
    PrintProblem(m_ledger.NameOf(order.Row) + ": " + ending.Text + m_out.Outcome);
    m_out.Outcome.clear();
    static_cast<void>(m_out.Finish());
}

void IssueRun::SayDone(const CardOrder& order, const std::string& serial)
{
    m_reasons.erase(order.Row);
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double, std::ratio<60>> elapsed = now - m_start;
    const int left = m_ledger.CountLeft();
    m_out.Print(Format("%s: done, %s, %d left", m_ledger.NameOf(order.Row).c_str(), serial.c_str(), left) +
                (m_count == 0 ? "" : Format(", %.0f cards a minute", m_count / elapsed.count())));
    if (m_count++ == 0) {
        m_start = now;
    }
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
    for (const std::vector<std::string>* const texts : {&orderOptions.Columns, &orderOptions.Ignored}) {
        for (const std::string& text : *texts) {
            digest = DigestOf(text + '\n', digest);
        }
    }
    CardLedger ledger(options.File, digest, std::move(orders));
    if (!options.GivenUp.empty()) {
        ledger.GiveUp(ParseNumber(options.GivenUp, 1, INT32_MAX, "--give-up is the number of a row"));
    }
    ledger.Accept(options.IsResumed ? CardLedger::Changed::Accepted : CardLedger::Changed::Refused);
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
    command.List(
        "--set", "NAME=CELL", options.Orders.Columns,
        "A column with the same cell in each row; may be repeated. A key is refused: it belongs into "
        "the table");
    command.Option("--ignore-columns", "LIST", options.Ignored, "Columns to ignore, separated by commas");
    command.Option("--encoding", "NAME", options.Orders.Encoding,
                   "Encoding of texts on the card: utf-8 (default), latin-1, or utf-16 (little-endian)");
    command.Flag("--check", options.IsCheck, "Check the whole table and exit; needs no reader");
    command.Flag("--resume", options.IsResumed,
                 "Continue although the table has changed: the rows already done remain valid");
    command.Option("--give-up", "ROW", options.GivenUp,
                   "The card begun for this row is lost: the row takes another card");
    command.Flag("--continue", options.GoesOn, "After a failure, continue with the next card");
    command.Flag("--yes", options.IsAgreedTo, "Don't ask for confirmation");
    command.Flag("--for-good", options.Orders.IsForGood, "Allow changes that can never be undone");
}

} // namespace acg::tool
