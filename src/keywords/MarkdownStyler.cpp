#include "keywords/MarkdownStyler.h"

#include "keywords/KeywordsLog.h"
#include "keywords/StorageBatch.h"
#include "keywords/StyleMarks.h"
#include "keywords/TextChangePipeline.h"
#include "platform/CustomAttribute.h"
#include "platform/TextStorage.h"

#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace scrivlet {

namespace {

const QString kTag = QStringLiteral("markdown");

// Colour roles of the theme. The markers' roles are the theme's way of letting them
// recede; headings, comments and code each take one colour of their own.
const QString kMarkerColor = QStringLiteral("markerColor");
const QString kInlineCodeMarkerColor = QStringLiteral("inlineCodeMarkerColor");
const QString kCodeBlockMarkerColor = QStringLiteral("codeBlockMarkerColor");
const QString kHeadingColor = QStringLiteral("accent1Main");
const QString kCommentColor = QStringLiteral("typeSubtle");
const QString kInlineCodeColor = QStringLiteral("accent3Main");
const QString kCodeBlockColor = QStringLiteral("accent2Main");

// How much larger than the note's text the three heading levels are drawn.
constexpr double kHeadingScales[] = {1.5, 1.3, 1.15};

enum class Shape {
    // Group 1 takes the style; what the match holds around it are its markers.
    Delimited,
    // Groups 1 and 2 take the style; the blanks between them stay as they are.
    TwoGroups,
};

// How far from the styled line a match can begin.
enum class Reach {
    // The match lies within the line.
    Line,
    // A comment's text can be the line after a bare "//".
    LineBefore,
    // A block of code starts at any fence above.
    WholeNote,
};

struct MarkdownPattern {
    QRegularExpression regex;
    Shape shape;
    Reach reach;
    CustomAttribute content;
    CustomAttribute marker;
};

CustomAttribute markdownMark(const QString &subtag)
{
    CustomAttribute mark;
    mark.tag = kTag;
    mark.subtag = subtag;
    return mark;
}

CustomAttribute emphasis(const QString &subtag, bool bold, bool italic)
{
    CustomAttribute mark = markdownMark(subtag);
    if (bold)
        mark.bold = true;
    if (italic)
        mark.italic = true;
    return mark;
}

CustomAttribute coloured(const QString &subtag, const QString &color)
{
    CustomAttribute mark = markdownMark(subtag);
    mark.color = color;
    return mark;
}

CustomAttribute heading(int level)
{
    CustomAttribute mark = coloured(u'h' + QString::number(level), kHeadingColor);
    mark.bold = true;
    mark.fontScale = kHeadingScales[level - 1];
    return mark;
}

struct PatternSource {
    const char16_t *pattern;
    QRegularExpression::PatternOptions options;
    const char *failure;
    Shape shape;
    Reach reach;
    CustomAttribute content;
    CustomAttribute marker;
};

// The patterns run in this order, and a later one wins where two overlap: a block of
// code shows as code whatever markers it holds.
std::vector<MarkdownPattern> buildPatterns()
{
    const auto lines = QRegularExpression::MultilineOption;
    const auto none = QRegularExpression::NoPatternOption;

    CustomAttribute comment = coloured(QStringLiteral("commentMarker"), kCommentColor);
    comment.italic = true;
    CustomAttribute strike = markdownMark(QStringLiteral("strikethrough"));
    strike.strikethroughStyle = 1;
    CustomAttribute underline = markdownMark(QStringLiteral("underline"));
    underline.underlineStyle = 1;

    const PatternSource sources[] = {
        {uR"(\*\*\*(.*?)\*\*\*)", none, "Error creating bold+italic regex: ", Shape::Delimited, Reach::Line,
         emphasis(QStringLiteral("boldItalic"), true, true),
         coloured(QStringLiteral("boldItalicMarker"), kMarkerColor)},
        {uR"((?<!\*)\*\*(?!\*)(.*?)\*\*(?!\*))", none, "Error creating bold regex: ", Shape::Delimited, Reach::Line,
         emphasis(QStringLiteral("bold"), true, false), coloured(QStringLiteral("boldMarker"), kMarkerColor)},
        {uR"((?<!\*)\*(?!\*)(.*?)\*(?!\*))", none, "Error creating italic regex: ", Shape::Delimited, Reach::Line,
         emphasis(QStringLiteral("italic"), false, true), coloured(QStringLiteral("italicMarker"), kMarkerColor)},
        {uR"(^(#)[ \t]+([^\r\n]+)$)",
         lines,
         "Error creating header level 1 regex: ",
         Shape::TwoGroups,
         Reach::Line,
         heading(1),
         {}},
        {uR"(^(##)[ \t]+([^\r\n]+)$)",
         lines,
         "Error creating header level 2 regex: ",
         Shape::TwoGroups,
         Reach::Line,
         heading(2),
         {}},
        {uR"(^(###)[ \t]+([^\r\n]+)$)",
         lines,
         "Error creating header level 3 regex: ",
         Shape::TwoGroups,
         Reach::Line,
         heading(3),
         {}},
        {uR"(^\s*(//)\s?(.*)$)",
         lines,
         "Error creating comment regex: ",
         Shape::TwoGroups,
         Reach::LineBefore,
         comment,
         {}},
        {uR"(~~(.*?)~~)", none, "Error creating strikethrough regex: ", Shape::Delimited, Reach::Line, strike,
         coloured(QStringLiteral("strikethroughMarker"), kMarkerColor)},
        {uR"(__(.*?)__)", none, "Error creating underline regex: ", Shape::Delimited, Reach::Line, underline,
         coloured(QStringLiteral("underlineMarker"), kMarkerColor)},
        {uR"(`([^`\n\r]+)`)", none, "Error creating inline code regex: ", Shape::Delimited, Reach::Line,
         coloured(QStringLiteral("inlineCode"), kInlineCodeColor),
         coloured(QStringLiteral("inlineCodeMarker"), kInlineCodeMarkerColor)},
        {uR"(```([\s\S]*?)```)", none, "Error creating code block regex: ", Shape::Delimited, Reach::WholeNote,
         coloured(QStringLiteral("codeBlock"), kCodeBlockColor),
         coloured(QStringLiteral("codeBlockMarker"), kCodeBlockMarkerColor)},
    };

    std::vector<MarkdownPattern> built;
    for (const PatternSource &source : sources) {
        QRegularExpression regex(QString::fromUtf16(source.pattern), source.options);
        if (!regex.isValid()) {
            // A pattern that can't be built leaves its style out; the others still show.
            qCWarning(lcKeywords, "%s%s", source.failure, qUtf8Printable(regex.errorString()));
            continue;
        }
        regex.optimize();
        built.push_back({std::move(regex), source.shape, source.reach, source.content, source.marker});
    }
    return built;
}

const std::vector<MarkdownPattern> &patterns()
{
    static const std::vector<MarkdownPattern> compiled = buildPatterns();
    return compiled;
}

// One style laid over a stretch of text; where two overlap, the later one shows.
struct Paint {
    qsizetype start;
    qsizetype end;
    const CustomAttribute *look;
};

class PaintCollector {
public:
    explicit PaintCollector(const TextRange &scope) : m_scope(scope) {}

    void add(qsizetype start, qsizetype end, const CustomAttribute &look)
    {
        start = std::max(start, m_scope.location);
        end = std::min(end, m_scope.end());
        if (start < end)
            m_paints.push_back({start, end, &look});
    }

    void collect(const MarkdownPattern &pattern, QStringView subject, qsizetype from)
    {
        QRegularExpressionMatchIterator it = pattern.regex.globalMatch(subject, from);
        while (it.hasNext()) {
            const QRegularExpressionMatch match = it.next();
            if (match.capturedStart(0) >= m_scope.end())
                break;
            if (pattern.shape == Shape::Delimited) {
                add(match.capturedStart(0), match.capturedStart(1), pattern.marker);
                add(match.capturedStart(1), match.capturedEnd(1), pattern.content);
                add(match.capturedEnd(1), match.capturedEnd(0), pattern.marker);
            } else {
                add(match.capturedStart(1), match.capturedEnd(1), pattern.content);
                add(match.capturedStart(2), match.capturedEnd(2), pattern.content);
            }
        }
    }

    // Lays the styles, the later over the earlier, from the start of the text to its end:
    // each stretch is set once, with the style that shows there.
    void apply(TextStorage &storage) const
    {
        if (m_paints.empty())
            return;
        std::vector<qsizetype> cuts;
        cuts.reserve(m_paints.size() * 2);
        for (const Paint &paint : m_paints) {
            cuts.push_back(paint.start);
            cuts.push_back(paint.end);
        }
        std::sort(cuts.begin(), cuts.end());
        cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());

        // The style on top of each piece between two cuts.
        std::vector<const CustomAttribute *> top(cuts.size() - 1, nullptr);
        for (const Paint &paint : m_paints) {
            const auto first = std::lower_bound(cuts.begin(), cuts.end(), paint.start) - cuts.begin();
            const auto last = std::lower_bound(cuts.begin() + first, cuts.end(), paint.end) - cuts.begin();
            for (auto piece = first; piece < last; ++piece)
                top[std::size_t(piece)] = paint.look;
        }

        qsizetype start = 0;
        const CustomAttribute *look = nullptr;
        for (std::size_t piece = 0; piece < top.size(); ++piece) {
            if (top[piece] == look && look)
                continue;
            if (look)
                addStyle(storage, {start, cuts[piece] - start}, *look);
            look = top[piece];
            start = cuts[piece];
        }
        if (look)
            addStyle(storage, {start, cuts.back() - start}, *look);
    }

private:
    TextRange m_scope;
    std::vector<Paint> m_paints;
};

} // namespace

MarkdownStyler::MarkdownStyler(TextChangePipeline &pipeline)
{
    pipeline.passes().applyMarkdown = [](const TextPassInput &input) {
        applyMarkdown(input.storage, input.lineOnly);
        if (input.lineOnly && input.restyledLines) {
            for (const TextRange &line : *input.restyledLines)
                applyMarkdown(input.storage, line);
        }
    };
}

void MarkdownStyler::applyMarkdown(TextStorage &storage, bool lineOnly)
{
    applyMarkdown(storage, lineOnly ? storage.lineRange(storage.selectedRange()) : TextRange{0, storage.length()});
}

void MarkdownStyler::applyMarkdown(TextStorage &storage, const TextRange &scope)
{
    const QString text = storage.string();
    if (scope.isEmpty())
        return;

    // A match is found the same way whether the scan starts at the top of the note or
    // where the pattern's reach begins: restyling one line gives it the marks a full
    // restyle would.
    const QStringView upToScopeEnd = QStringView(text).left(scope.end());
    const qsizetype lineBefore = scope.location < 2 ? 0 : text.lastIndexOf(u'\n', scope.location - 2) + 1;

    PaintCollector paints(scope);
    for (const MarkdownPattern &pattern : patterns()) {
        switch (pattern.reach) {
        case Reach::Line:
            paints.collect(pattern, upToScopeEnd, scope.location);
            break;
        case Reach::LineBefore:
            paints.collect(pattern, upToScopeEnd, lineBefore);
            break;
        case Reach::WholeNote:
            // Whether a line lies inside a block depends on every fence above it.
            if (text.contains(QStringLiteral("```")))
                paints.collect(pattern, text, 0);
            break;
        }
    }
    uxTextStorage(&storage, [&](TextStorage &batch) { paints.apply(batch); });
}

} // namespace scrivlet
