#include "calculation/ProcessMath.h"

#include "MathParser/MathEngine.h"
#include "calculation/CalculationLog.h"
#include "calculation/ConversionService.h"
#include "calculation/LinkPattern.h"
#include "calculation/NumberFormat.h"
#include "calculation/NumberLocale.h"
#include "calculation/SanitizeExpression.h"
#include "platform/MessagePillTypes.h"
#include "platform/NotificationBus.h"
#include "platform/TextStorage.h"
#include "shell/preferences/MathPreferences.h"

#include <QRegularExpression>

#include <algorithm>

namespace scrivlet {

namespace {

const QString kNotAvailable = QStringLiteral("n/a");

// Theme colours of the marks.
const QString kResultColor = QStringLiteral("accent3Main");
const QString kDefinedNameColor = QStringLiteral("accent1Secondary");
const QString kDefinitionColonColor = QStringLiteral("accent2Main");
const QString kUsedVariableColor = QStringLiteral("accent1Secondary");

struct Line {
    qsizetype start;
    qsizetype length;    // without its line break
    qsizetype breakSize; // 0 for the last line, 2 for "\r\n"
};

bool isLineBreak(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 0x0a && u <= 0x0d) || u == 0x85 || u == 0x2028 || u == 0x2029;
}

std::vector<Line> splitLines(const QString &text)
{
    std::vector<Line> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!isLineBreak(text.at(i)))
            continue;
        const qsizetype breakSize = text.at(i) == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n' ? 2 : 1;
        lines.push_back({start, i - start, breakSize});
        i += breakSize - 1;
        start = i + 1;
    }
    lines.push_back({start, text.size() - start, 0});
    return lines;
}

QStringView trimmedBlanksAndTabs(QStringView text)
{
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && (text.at(from) == u' ' || text.at(from) == u'\t'))
        ++from;
    while (to > from && (text.at(to - 1) == u' ' || text.at(to - 1) == u'\t'))
        --to;
    return text.mid(from, to - from);
}

// A line that is an address ("example.com =") is left alone. Only the blanks before
// the "=" are overlooked: a link followed by anything else is no reason to stop.
bool endsWithLink(const QString &expression)
{
    // Every link holds a dot or is "localhost"; most lines are spared the pattern.
    if (!expression.contains(u'.') && !expression.contains(u"localhost"))
        return false;
    qsizetype end = expression.size();
    while (end > 0 && expression.at(end - 1).isSpace())
        --end;
    qsizetype lastEnd = -1;
    auto matches = linkPattern().globalMatch(expression);
    while (matches.hasNext())
        lastEnd = matches.next().capturedEnd();
    return lastEnd >= 0 && lastEnd == end;
}

TextAttributes markAttributes(const QString &subtag, const QString &color)
{
    TextAttributes attributes;
    attributes.foreground = color;
    CustomAttribute mark;
    mark.tag = ProcessMath::markTag();
    mark.subtag = subtag;
    mark.color = color;
    attributes.custom = mark;
    return attributes;
}

// What a run looks like once its mark is gone: the mark's looks come off with it. A
// run changed by the math pass loses any mark, the math one or one laid over it (a
// markdown style), which is laid again after the pass.
TextAttributes withoutMark(TextAttributes attributes, const TextAttributes &defaults)
{
    if (!attributes.custom)
        return attributes;
    const CustomAttribute mark = *attributes.custom;
    attributes.custom.reset();
    if ((mark.bold || mark.italic) && attributes.font) {
        attributes.font->bold = false;
        attributes.font->italic = false;
    }
    if (mark.color)
        attributes.foreground = defaults.foreground;
    if (mark.backgroundColor)
        attributes.background.reset();
    if (mark.underlineStyle)
        attributes.underlineStyle = 0;
    if (mark.strikethroughStyle)
        attributes.strikethroughStyle = 0;
    if (mark.underlineColor)
        attributes.underlineColor.reset();
    return attributes;
}

// One batch of storage changes per line, with the delegate away so that the pass does
// not hear its own edits as the user's.
class StorageBatch final {
public:
    explicit StorageBatch(TextStorage &storage) : m_storage(storage), m_delegate(storage.delegate())
    {
        m_storage.setDelegate(nullptr);
        m_storage.beginEditing();
    }
    ~StorageBatch()
    {
        m_storage.endEditing();
        m_storage.setDelegate(m_delegate);
    }
    StorageBatch(const StorageBatch &) = delete;
    StorageBatch &operator=(const StorageBatch &) = delete;

private:
    TextStorage &m_storage;
    TextStorageDelegate *m_delegate;
};

} // namespace

ProcessMath::ProcessMath(const MathPreferences *preferences, NotificationBus &bus, DefaultAttributes defaultAttributes,
                         const ConversionService *conversion)
    : m_preferences(preferences), m_bus(bus), m_defaultAttributes(std::move(defaultAttributes)),
      m_conversion(conversion)
{
}

void ProcessMath::processAllMath(TextStorage &storage, const MathEdit &edit)
{
    m_settings.decimals = m_preferences ? std::max(0, m_preferences->numberOfDecimalPoints()) : 2;
    m_settings.useThousandSeparators = m_preferences ? m_preferences->useThousandSeparatorsStorage() : true;
    m_settings.defaults = m_defaultAttributes ? m_defaultAttributes() : TextAttributes{};
    // The locale or a preference may have changed since the last pass.
    m_substitutions.clear();

    const QString text = storage.string();
    const std::vector<Line> lines = splitLines(text);
    std::vector<qsizetype> lengths(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        lengths[i] = lines[i].length;
    const auto lineText = [&](std::size_t i) { return text.mid(lines[i].start, lines[i].length); };

    const bool singleLine =
        !(edit.firstLineTouched || edit.rangeReplaced || edit.pasted || edit.hasLineBreak || edit.wholeNote);
    std::optional<std::size_t> editLine;
    if (singleLine) {
        const qsizetype location = edit.deleted ? storage.selectedRange().location : edit.editLocation;
        editLine = 0;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (location >= lines[i].start && location <= lines[i].start + lines[i].length) {
                editLine = i;
                break;
            }
        }
    } else {
        m_mathManager.clearAll();
    }
    keepOrForgetOutcomes(!editLine, lines.size());
    m_lineRestyled.assign(lines.size(), false);
    {
        // Each line is a batch of its own; around them all one more, so that an editor
        // that lays out its text after a batch does so once for the whole pass.
        StorageBatch wholeNote(storage);
        if (editLine) {
            // The edited line goes first: the lines below then see what it defines now.
            lengths[*editLine] =
                processLineInBatch(int(*editLine), lineText(*editLine), storage, lines[*editLine].start);
        }

        qsizetype start = 0;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (i != editLine)
                lengths[i] = processLineInBatch(int(i), lineText(i), storage, start);
            start += lengths[i] + lines[i].breakSize;
        }
    }

    m_restyledLines.clear();
    qsizetype start = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (m_lineRestyled[i] && i != editLine)
            m_restyledLines.push_back({start, lengths[i]});
        start += lengths[i] + lines[i].breakSize;
    }
    postDuplicatesPill();
}

qsizetype ProcessMath::processLineInBatch(int lineIndex, const QString &lineText, TextStorage &storage,
                                          qsizetype lineStart)
{
    StorageBatch batch(storage);
    return processMathLine(lineIndex, lineText, lineIndex + 1, storage, lineStart);
}

void ProcessMath::postDuplicatesPill() const
{
    const QString message = duplicateVariablesMessage();
    const auto &duplicates = m_mathManager.duplicateVariables();
    // The pill stays until a pass finds no key defined twice; it is asked away on every
    // such pass, since the pill may have come from an earlier one. The request names the
    // pill by the start of its text, which is all of it that doesn't change.
    if (duplicates.empty()) {
        m_bus.post(QStringLiteral("DismissMessagePillNotification"), {{QStringLiteral("message"), message}});
        return;
    }
    QStringList keys;
    for (const auto &[line, key] : duplicates) {
        if (!keys.contains(key))
            keys << key;
    }
    m_bus.post(QStringLiteral("MessagePillNotification"),
               {{QStringLiteral("message"), QString(message % QStringLiteral(": ") % keys.join(QStringLiteral(", ")))},
                {QStringLiteral("type"), MessagePillTypes::error()},
                {QStringLiteral("persistent"), true}});
}

std::optional<double> ProcessMath::evaluate(const QString &expression) const
{
    const math::MathResult<double> result = math::evaluate(SanitizeExpression::sanitize(expression));
    if (!result)
        return std::nullopt;
    return result.value();
}

// A variable's value as it is stored and put into the lines below: 16 decimals and no
// grouping, which the sanitiser reads back in every locale.
QString ProcessMath::variableValueText(double value, const QString &symbol) const
{
    return formatNumber(value, kVariableDecimals, symbol, false).value_or(kNotAvailable);
}

std::optional<QString> ProcessMath::substitutionFor(const QString &key, int lineNumber)
{
    const Variable *variable = m_mathManager.variable(key);
    // A variable is only known below its definition.
    if (!variable || variable->lineNumber >= lineNumber)
        return std::nullopt;
    auto cached = m_substitutions.constFind(key);
    if (cached == m_substitutions.constEnd()) {
        cached = m_substitutions.insert(key, variableValueText(variable->value.toDouble(), variable->currencySymbol));
    }
    return *cached;
}

qsizetype ProcessMath::processMathLine(int lineIndex, const QString &lineText, int lineNumber, TextStorage &storage,
                                       qsizetype lineStart)
{
    const qsizetype unchanged = lineText.size();
    // A line that is not calculated shows none of the looks of one, even if it was
    // calculated before the last keystroke: no result colour, and no result that the
    // caret can't enter.
    const auto leaveAlone = [&] {
        noteRestyled(lineIndex, layMarks(storage, lineStart, unchanged, {}));
        return unchanged;
    };
    // The first line is the keyword; a comment counts for nothing, and what it defined
    // before stays until the next full pass.
    if (lineIndex == 0 || trimmedBlanksAndTabs(lineText).startsWith(u"//"))
        return leaveAlone();
    m_mathManager.removeDuplicate(lineNumber);

    // A definition has exactly one colon with a name before it. Whether the line also
    // has an "=" doesn't matter: "a: 5 =" defines a and shows its value.
    const qsizetype colon = lineText.indexOf(u':');
    const bool isDefinition =
        colon >= 0 && lineText.indexOf(u':', colon + 1) < 0 && !QStringView(lineText).left(colon).trimmed().isEmpty();

    QString name;
    QString key;
    QString rhs;
    bool heldElsewhere = false;
    if (!isDefinition) {
        m_mathManager.removeVariable(lineNumber);
        rhs = lineText;
    } else {
        name = lineText.left(colon);
        rhs = lineText.mid(colon + 1);
        key = trimmedBlanksAndTabs(name).toString();
        if (rhs.trimmed().isEmpty()) {
            m_mathManager.removeVariable(lineNumber);
            rhs.clear();
        }
        // The first definition stays in force; a later one is named in the pill. While
        // typing, a variable of a line below may still be known from the last pass; it
        // will be defined again when its own line comes, and doesn't count here.
        const Variable *existing = m_mathManager.variable(key);
        heldElsewhere = existing && existing->lineNumber < lineNumber;
        if (heldElsewhere) {
            qCDebug(lcCalculation, "Variable %s already exists at line %ld.", qUtf8Printable(key),
                    long(existing->lineNumber));
            m_mathManager.setDuplicate(lineNumber, key);
        }
        // The value is worked out below, once the variables above are put in: "day:
        // rate * 8" needs rate. Reading it before that as well would change nothing
        // that lasts, but would make the line's key vanish and come back in between,
        // and take the uses of it that lines already noted with it.
    }

    const qsizetype equals = rhs.indexOf(u'=');
    const QString expression = equals < 0 ? rhs : rhs.left(equals);
    // Links are no math. An address with a scheme or a port ("https://a.org/?q=1") has
    // a colon and so reads as a definition; it is looked at whole as well.
    if (endsWithLink(expression) ||
        (isDefinition && endsWithLink(lineText.left(colon + 1 + (equals < 0 ? rhs.size() : equals)))))
        return leaveAlone();

    const QString substituted = m_mathManager.matcher().substitute(
        expression, [&](const QString &candidate) { return substitutionFor(candidate, lineNumber); });

    // A line uses the variables above it; its own name in its expression is no use.
    const QStringList used =
        substituted != expression ? m_mathManager.usedVariables(expression, lineNumber - 1) : QStringList();
    const auto noted = m_mathManager.variableUseReverseIndex().find(lineNumber);
    const bool sameUses =
        noted == m_mathManager.variableUseReverseIndex().end() ? used.isEmpty() : noted->second == used;
    if (!sameUses) {
        m_mathManager.removeUses(lineNumber);
        for (const QString &key : used)
            m_mathManager.addUse(key, lineNumber);
    }

    // A line with no "=" that defines nothing shows no result and stores none: there is
    // nothing to work out.
    Outcome none;
    const Outcome *outcome = &none;
    if (equals >= 0 || isDefinition) {
        QHash<QString, Outcome> &outcomes = m_outcomes[isDefinition ? 1 : 0];
        auto known = outcomes.constFind(substituted);
        if (known == outcomes.constEnd())
            known = outcomes.insert(substituted, work(substituted, isDefinition));
        outcome = &*known;
    }
    const QString &result = outcome->result;
    const QString &storedValue = outcome->storedValue;

    if (isDefinition && !heldElsewhere) {
        m_mathManager.defineVariable(key, storedValue, lineNumber);
        m_substitutions.remove(key);
    }

    // The result goes behind the first "=", and whatever stood there goes: that is how a
    // result is renewed. The expression keeps its spacing ("82+55= 137.00").
    QString line = lineText;
    if (equals >= 0) {
        line = (isDefinition ? name % u':' % expression : expression) % QStringLiteral("= ") % result;
        if (line != lineText) {
            const TextAttributes attributes =
                lineStart < storage.length() ? storage.attributesAt(lineStart) : m_settings.defaults;
            storage.replaceCharacters({lineStart, lineText.size()}, line, attributes);
        }
    }

    noteRestyled(lineIndex, layMarks(storage, lineStart, line.size(), marksFor(line, lineNumber)));
    return line.size();
}

ProcessMath::Outcome ProcessMath::work(const QString &substituted, bool isDefinition) const
{
    Outcome outcome;
    if (m_conversion && m_conversion->isConversionRequest(substituted, !isDefinition)) {
        outcome.result = m_conversion->processConversion(substituted, m_settings.decimals);
        if (isDefinition) {
            // The number itself is stored; its currency is the one the result shows.
            const std::optional<double> converted = m_conversion->convertedValue(substituted);
            outcome.storedValue = converted
                                      ? variableValueText(*converted, MathManager::currencySymbolOf(outcome.result))
                                      : kNotAvailable;
        }
        return outcome;
    }
    const QString symbol = MathManager::currencySymbolOf(substituted);
    const std::optional<double> value = evaluate(substituted);
    outcome.result = value ? formatNumber(*value, m_settings.decimals, symbol, m_settings.useThousandSeparators)
                                 .value_or(kNotAvailable)
                           : kNotAvailable;
    if (isDefinition)
        outcome.storedValue = value ? variableValueText(*value, symbol) : kNotAvailable;
    return outcome;
}

void ProcessMath::keepOrForgetOutcomes(bool wholeNote, std::size_t lineCount)
{
    const NumberLocale &locale = NumberLocale::current();
    const QString localeKey = locale.groupingSeparator() % u'|' % locale.decimalSeparator();
    const std::size_t kept = std::size_t(m_outcomes[0].size() + m_outcomes[1].size());
    // Each keystroke adds the outcome of the line it changed; a long session of typing
    // starts over once the old ones far outnumber the lines.
    if (wholeNote || localeKey != m_outcomesLocale || m_settings.decimals != m_outcomesDecimals ||
        m_settings.useThousandSeparators != m_outcomesGrouping || kept > 4 * lineCount + 64) {
        m_outcomes[0].clear();
        m_outcomes[1].clear();
        m_outcomesLocale = localeKey;
        m_outcomesDecimals = m_settings.decimals;
        m_outcomesGrouping = m_settings.useThousandSeparators;
    }
}

std::vector<ProcessMath::Mark> ProcessMath::marksFor(const QString &line, int lineNumber) const
{
    std::vector<Mark> marks;
    // Every "=" marks the rest of the line as a result; the first one's mark covers
    // those of the others.
    const qsizetype equals = line.indexOf(u'=');
    if (equals >= 0 && equals + 1 < line.size())
        marks.push_back({{equals + 1, line.size() - equals - 1}, calculatedFieldHighlight(), kResultColor});

    const auto defined = m_mathManager.storedVariablesReverseIndex().find(lineNumber);
    if (defined != m_mathManager.storedVariablesReverseIndex().end()) {
        const Variable *variable = m_mathManager.variable(defined->second);
        if (variable && variable->lineNumber == lineNumber) {
            const qsizetype at = line.indexOf(variable->key);
            if (at >= 0)
                marks.push_back({{at, variable->key.size()}, definedVariableHighlight(), kDefinedNameColor});
            const qsizetype colon = line.indexOf(u':');
            if (colon >= 0)
                marks.push_back({{colon, 1}, definedVariableHighlight(), kDefinitionColonColor});
        }
    }

    // Uses are looked for behind the definition's colon, or in the whole line.
    const qsizetype colon = line.indexOf(u':');
    const qsizetype from = colon >= 0 ? colon + 1 : 0;
    const auto usable = [&](const QString &key) {
        const Variable *variable = m_mathManager.variable(key);
        return variable && variable->lineNumber < lineNumber;
    };
    for (const TextRange &use : m_mathManager.matcher().occurrences(line.mid(from), usable))
        marks.push_back({{from + use.location, use.length}, usedVariableHighlight(), kUsedVariableColor});
    return marks;
}

// Takes the old math marks off the line and lays the new ones. Most lines look the same
// after every keystroke, so the outcome is worked out first and only the runs that come
// out different are written.
bool ProcessMath::layMarks(TextStorage &storage, qsizetype lineStart, qsizetype lineLength,
                           const std::vector<Mark> &marks)
{
    if (lineLength == 0)
        return false;
    struct Piece {
        TextRange range;
        TextAttributes attributes;
    };
    std::vector<Piece> current;
    storage.enumerateRuns({lineStart, lineLength}, [&](const TextRange &run, const TextAttributes &attributes) {
        current.push_back({run, attributes});
    });
    if (current.empty())
        return false;

    std::vector<qsizetype> cuts;
    cuts.reserve(current.size() + 2 * marks.size() + 1);
    for (const Piece &piece : current)
        cuts.push_back(piece.range.location);
    for (const Mark &mark : marks) {
        cuts.push_back(lineStart + mark.range.location);
        cuts.push_back(lineStart + mark.range.end());
    }
    cuts.push_back(lineStart + lineLength);
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());

    // Each piece between two cuts has one look before, and after it the look of the
    // last mark over it, or none. A mark sets the colour and the mark itself.
    const std::size_t pieces = cuts.size() - 1;
    std::vector<TextAttributes> looks;
    looks.reserve(marks.size());
    for (const Mark &mark : marks)
        looks.push_back(markAttributes(mark.subtag, mark.color));
    std::vector<int> top(pieces, -1);
    for (std::size_t m = 0; m < marks.size(); ++m) {
        const auto first = std::lower_bound(cuts.begin(), cuts.end(), lineStart + marks[m].range.location);
        const auto last = std::lower_bound(first, cuts.end(), lineStart + marks[m].range.end());
        for (auto cut = first; cut != last; ++cut)
            top[std::size_t(cut - cuts.begin())] = int(m);
    }

    std::vector<Piece> changes;
    std::size_t run = 0;
    for (std::size_t i = 0; i < pieces; ++i) {
        while (run + 1 < current.size() && current[run + 1].range.location <= cuts[i])
            ++run;
        const TextAttributes &before = current[run].attributes;
        const TextAttributes *look = top[i] >= 0 ? &looks[std::size_t(top[i])] : nullptr;
        const bool unchanged = look ? before.custom == look->custom && before.foreground == look->foreground
                                    : !(before.custom && before.custom->tag == markTag());
        if (unchanged)
            continue;
        TextAttributes after = withoutMark(before, m_settings.defaults);
        if (look)
            after.merge(*look);
        const TextRange piece{cuts[i], cuts[i + 1] - cuts[i]};
        if (!changes.empty() && changes.back().range.end() == piece.location && changes.back().attributes == after)
            changes.back().range.length += piece.length;
        else
            changes.push_back({piece, std::move(after)});
    }
    for (const Piece &change : changes) {
        storage.setAttributes(change.range, change.attributes);
        storage.invalidateDisplay(change.range);
    }
    return !changes.empty();
}

void ProcessMath::noteRestyled(int lineIndex, bool restyled)
{
    // A line worked out on its own, outside a pass over the note, has nothing to report to.
    if (restyled && std::size_t(lineIndex) < m_lineRestyled.size())
        m_lineRestyled[std::size_t(lineIndex)] = true;
}

} // namespace scrivlet
