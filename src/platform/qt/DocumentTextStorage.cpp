#include "platform/qt/DocumentTextStorage.h"

#include "platform/AttributedText.h"
#include "platform/TextDifference.h"

#include <QAbstractTextDocumentLayout>
#include <QColor>
#include <QFont>
#include <QScrollBar>
#include <QSet>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>

Q_DECLARE_METATYPE(scrivlet::TextAttributes)

namespace scrivlet {

namespace {

// Where the passes' own attributes ride along inside a character format.
constexpr int kAttributesProperty = QTextFormat::UserProperty + 1;

TextAttributes storedAttributes(const QTextCharFormat &format)
{
    const QVariant v = format.property(kAttributesProperty);
    return v.isValid() ? v.value<TextAttributes>() : TextAttributes{};
}

// Marks the storage's own changes to the document while they are made, and until the
// document tells of them: the copy has them already.
class OwnChange {
public:
    explicit OwnChange(int &depth) : m_depth(depth) { ++m_depth; }
    ~OwnChange() { --m_depth; }
    OwnChange(const OwnChange &) = delete;
    OwnChange &operator=(const OwnChange &) = delete;

private:
    int &m_depth;
};

} // namespace

DocumentTextStorage::DocumentTextStorage(QTextEdit *editor, ColorResolver colors)
    : QObject(editor), m_editor(editor), m_document(editor->document()), m_colors(std::move(colors)),
      m_mirror(std::make_unique<AttributedText>()), m_staged(std::make_unique<AttributedText>())
{
    reloadMirror();
    // What the user does in the editor (typing, pasting, dropping) reaches the document
    // first, and the copy follows it here. The storage's own changes are made to both.
    connect(m_document, &QTextDocument::contentsChange, this, [this](int position, int removed, int added) {
        if (m_ownChanges == 0)
            followDocument(position, removed, added);
    });
}

DocumentTextStorage::~DocumentTextStorage() = default;

const AttributedText &DocumentTextStorage::current() const
{
    return m_staging ? *m_staged : *m_mirror;
}

QString DocumentTextStorage::documentText(qsizetype from, qsizetype to) const
{
    QTextCursor cursor(m_document);
    cursor.setPosition(int(from));
    cursor.setPosition(int(to), QTextCursor::KeepAnchor);
    // The document separates paragraphs with U+2029 where the note has a line feed.
    QString text = cursor.selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    return text;
}

qsizetype DocumentTextStorage::documentLength() const
{
    return std::max(0, m_document->characterCount() - 1);
}

void DocumentTextStorage::reloadMirror()
{
    // The whole text replaced by the whole document: the counts always agree.
    followDocument(0, m_mirror->length(), documentLength());
}

void DocumentTextStorage::followDocument(qsizetype position, qsizetype removed, qsizetype added)
{
    // The document may count the paragraph end after the last character, which the note
    // doesn't have: the counts are taken within the text on either side.
    const qsizetype before = m_mirror->length();
    const qsizetype after = documentLength();
    position = qBound<qsizetype>(0, position, before);
    removed = qBound<qsizetype>(0, removed, before - position);
    added = after - (before - removed);
    if (added < 0 || position + added > after) {
        reloadMirror();
        return;
    }
    const TextRange changed{position, added};
    m_mirror->replaceCharacters({position, removed}, documentText(position, changed.end()), {});
    enumerateDocumentRuns(changed, [&](const TextRange &run, const TextAttributes &attributes) {
        m_mirror->setAttributes(run, attributes);
    });
}

bool DocumentTextStorage::mirrorsDocument() const
{
    const qsizetype size = documentLength();
    if (m_mirror->text() != documentText(0, size))
        return false;
    bool same = true;
    enumerateDocumentRuns({0, size}, [&](const TextRange &run, const TextAttributes &attributes) {
        TextRange held;
        same = same && m_mirror->attributesAt(run.location, &held) == attributes && held.location <= run.location &&
               held.end() >= run.end();
    });
    return same;
}

QString DocumentTextStorage::string() const
{
    return current().text();
}

qsizetype DocumentTextStorage::length() const
{
    return current().length();
}

TextRange DocumentTextStorage::clamp(const TextRange &range) const
{
    const qsizetype size = length();
    const qsizetype location = qBound<qsizetype>(0, range.location, size);
    const qsizetype end = qBound<qsizetype>(location, range.end(), size);
    return {location, end - location};
}

TextRange DocumentTextStorage::selectedRange() const
{
    if (m_staging)
        return m_staged->selectedRange();
    const QTextCursor cursor = m_editor->textCursor();
    return {cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()};
}

void DocumentTextStorage::setSelectedRange(const TextRange &range)
{
    if (m_staging) {
        m_staged->setSelectedRange(range);
        return;
    }
    const TextRange r = clamp(range);
    QTextCursor cursor = m_editor->textCursor();
    cursor.setPosition(int(r.location));
    cursor.setPosition(int(r.end()), QTextCursor::KeepAnchor);
    m_editor->setTextCursor(cursor);
}

TextAttributes DocumentTextStorage::attributesAt(qsizetype index, TextRange *effectiveRange) const
{
    return current().attributesAt(index, effectiveRange);
}

void DocumentTextStorage::enumerateRuns(const TextRange &range, const RunVisitor &visit) const
{
    current().enumerateRuns(range, visit);
}

void DocumentTextStorage::enumerateDocumentRuns(const TextRange &range, const RunVisitor &visit) const
{
    const qsizetype size = documentLength();
    const qsizetype location = qBound<qsizetype>(0, range.location, size);
    const TextRange r{location, qBound<qsizetype>(location, range.end(), size) - location};
    if (r.isEmpty())
        return;
    // Fragments break at paragraph ends even where the attributes go on: join equal
    // neighbours so a run is what the passes laid, not how the document stores it.
    TextRange pending;
    const TextAttributes *pendingAttributes = nullptr;
    bool havePending = false;
    auto flush = [&] {
        if (havePending && !pending.isEmpty())
            visit(pending, *pendingAttributes);
        havePending = false;
    };
    // Positions are counted along the walk: asking the document for a block's or a
    // fragment's position costs a tree search each time, which on a long note was most of
    // a whole-note pass.
    QTextBlock block = m_document->findBlock(int(r.location));
    qsizetype blockPosition = block.isValid() ? block.position() : 0;
    while (block.isValid() && blockPosition < r.end()) {
        qsizetype fragmentPosition = blockPosition;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const qsizetype fragmentEnd = fragmentPosition + fragment.length();
            const qsizetype from = std::max<qsizetype>(fragmentPosition, r.location);
            const qsizetype to = std::min<qsizetype>(fragmentEnd, r.end());
            fragmentPosition = fragmentEnd;
            if (to <= from)
                continue;
            const TextAttributes &attributes = attributesOfFormat(fragment.charFormatIndex());
            if (havePending && pending.end() == from && *pendingAttributes == attributes) {
                pending.length = to - pending.location;
            } else {
                flush();
                pending = {from, to - from};
                pendingAttributes = &attributes;
                havePending = true;
            }
        }
        // The line feed between two paragraphs carries the character format of the
        // paragraph it opens.
        const qsizetype separator = blockPosition + block.length() - 1;
        const QTextBlock next = block.next();
        if (next.isValid() && separator >= r.location && separator < r.end()) {
            const TextAttributes &attributes = attributesOfFormat(next.charFormatIndex());
            if (havePending && pending.end() == separator && *pendingAttributes == attributes) {
                pending.length += 1;
            } else {
                flush();
                pending = {separator, 1};
                pendingAttributes = &attributes;
                havePending = true;
            }
        }
        blockPosition += block.length();
        block = next;
    }
    flush();
}

const TextAttributes &DocumentTextStorage::attributesOfFormat(int formatIndex) const
{
    // A document never changes a format once it is in its collection, so what a format
    // index decodes to can be kept: a whole-note pass then reads each distinct format once.
    auto it = m_attributesByFormat.find(formatIndex);
    if (it == m_attributesByFormat.end()) {
        const QTextFormat format = m_document->allFormats().value(formatIndex);
        it = m_attributesByFormat.emplace(formatIndex, storedAttributes(format.toCharFormat())).first;
    }
    return it->second;
}

QTextCharFormat DocumentTextStorage::charFormat(const TextAttributes &a) const
{
    constexpr std::size_t kRecentFormats = 32;
    const double fontSize = m_editor->font().pointSizeF();
    if (fontSize != m_recentFormatsFontSize) {
        m_recentFormats.clear();
        m_recentFormatsFontSize = fontSize;
    }
    for (std::size_t i = 0; i < m_recentFormats.size(); ++i) {
        if (m_recentFormats[i].first == a) {
            // The most used looks stay near the front.
            if (i > 0)
                std::swap(m_recentFormats[i], m_recentFormats[i - 1]);
            return m_recentFormats[i > 0 ? i - 1 : 0].second;
        }
    }
    QTextCharFormat format = makeCharFormat(a);
    if (m_recentFormats.size() == kRecentFormats)
        m_recentFormats.pop_back();
    m_recentFormats.emplace_back(a, format);
    return format;
}

QTextCharFormat DocumentTextStorage::makeCharFormat(const TextAttributes &a) const
{
    QTextCharFormat format;
    format.setProperty(kAttributesProperty, QVariant::fromValue(a));
    std::optional<FontSpec> font = a.font;
    if (font) {
        QFont f(font->family);
        f.setStyleHint(QFont::Monospace);
        if (font->pointSize > 0)
            f.setPointSizeF(font->pointSize);
        f.setBold(font->bold);
        f.setItalic(font->italic);
        format.setFont(f);
    }
    // A styled run's own traits and colours come on top of the run's plain attributes.
    if (a.custom) {
        if (a.custom->bold)
            format.setFontWeight(*a.custom->bold ? QFont::Bold : QFont::Normal);
        if (a.custom->italic)
            format.setFontItalic(*a.custom->italic);
        if (a.custom->fontScale) {
            const double base = font && font->pointSize > 0 ? font->pointSize : m_editor->font().pointSizeF();
            format.setFontPointSize(base * *a.custom->fontScale);
        }
    }
    const std::optional<QString> foreground = a.custom && a.custom->color ? a.custom->color : a.foreground;
    if (foreground)
        format.setForeground(m_colors(*foreground));
    const std::optional<QString> background =
        a.custom && a.custom->backgroundColor ? a.custom->backgroundColor : a.background;
    if (background)
        format.setBackground(m_colors(*background));
    const std::optional<int> underline =
        a.custom && a.custom->underlineStyle ? a.custom->underlineStyle : a.underlineStyle;
    if (underline)
        format.setFontUnderline(*underline != 0);
    const std::optional<int> strike =
        a.custom && a.custom->strikethroughStyle ? a.custom->strikethroughStyle : a.strikethroughStyle;
    if (strike)
        format.setFontStrikeOut(*strike != 0);
    const std::optional<QString> underlineColor =
        a.custom && a.custom->underlineColor ? a.custom->underlineColor : a.underlineColor;
    if (underlineColor)
        format.setUnderlineColor(m_colors(*underlineColor));
    return format;
}

QTextBlockFormat DocumentTextStorage::blockFormat(const ParagraphSpec &p) const
{
    QTextBlockFormat block;
    // A paragraph with no direction of its own has its text scanned for one on every
    // layout, which on a long note costs more than everything else a keystroke does.
    block.setLayoutDirection(m_editor->layoutDirection());
    block.setLineHeight(p.lineHeightMultiple * 100.0, QTextBlockFormat::ProportionalHeight);
    block.setTextIndent(p.firstLineHeadIndent - p.headIndent);
    block.setLeftMargin(p.headIndent);
    if (p.tabStop > 0)
        block.setTabPositions({QTextOption::Tab(p.tabStop, QTextOption::LeftTab)});
    return block;
}

void DocumentTextStorage::applyParagraph(const TextRange &range, const TextAttributes &attributes)
{
    if (!attributes.paragraph)
        return;
    const QTextBlockFormat block = blockFormat(*attributes.paragraph);
    QTextCursor cursor(m_document);
    cursor.setPosition(int(range.location));
    cursor.setPosition(int(range.end()), QTextCursor::KeepAnchor);
    cursor.mergeBlockFormat(block);
}

template<typename Change>
void DocumentTextStorage::changeRuns(const TextRange &range, Change change)
{
    const TextRange r = clamp(range);
    if (r.isEmpty())
        return;
    struct Changed {
        TextRange run;
        TextAttributes attributes;
        bool paragraphChanged;
    };
    std::vector<Changed> runs;
    m_mirror->enumerateRuns(r, [&](const TextRange &run, const TextAttributes &attributes) {
        TextAttributes changed = attributes;
        change(changed);
        if (!(changed == attributes)) {
            const bool paragraphChanged = changed.paragraph != attributes.paragraph;
            runs.push_back({run, std::move(changed), paragraphChanged});
        }
    });
    if (runs.empty())
        return;
    // The copy goes first: whoever hears of the document's change reads the new state.
    for (const Changed &changed : runs)
        m_mirror->setAttributes(changed.run, changed.attributes);
    const OwnChange own(m_ownChanges);
    QTextCursor cursor(m_document);
    cursor.beginEditBlock();
    for (const Changed &changed : runs) {
        cursor.setPosition(int(changed.run.location));
        cursor.setPosition(int(changed.run.end()), QTextCursor::KeepAnchor);
        cursor.setCharFormat(charFormat(changed.attributes));
        // A colour or a mark leaves the paragraph as it is; setting it again anyway
        // would have the whole paragraph laid out anew.
        if (changed.paragraphChanged)
            applyParagraph(changed.run, changed.attributes);
    }
    cursor.endEditBlock();
}

void DocumentTextStorage::addAttributes(const TextRange &range, const TextAttributes &attributes)
{
    if (m_staging) {
        m_staged->addAttributes(range, attributes);
        return;
    }
    changeRuns(range, [&](TextAttributes &a) { a.merge(attributes); });
}

void DocumentTextStorage::setAttributes(const TextRange &range, const TextAttributes &attributes)
{
    if (m_staging) {
        m_staged->setAttributes(range, attributes);
        return;
    }
    changeRuns(range, [&](TextAttributes &a) { a = attributes; });
}

void DocumentTextStorage::removeAttributes(const TextRange &range, unsigned fields)
{
    if (m_staging) {
        m_staged->removeAttributes(range, fields);
        return;
    }
    changeRuns(range, [&](TextAttributes &a) { a.clear(fields); });
}

void DocumentTextStorage::replaceCharacters(const TextRange &range, const QString &text,
                                            const TextAttributes &attributes)
{
    if (m_staging) {
        m_staged->replaceCharacters(range, text, attributes);
        return;
    }
    const TextRange r = clamp(range);
    m_mirror->replaceCharacters(r, text, attributes);
    const OwnChange own(m_ownChanges);
    QTextCursor cursor(m_document);
    cursor.setPosition(int(r.location));
    cursor.setPosition(int(r.end()), QTextCursor::KeepAnchor);
    cursor.insertText(text, charFormat(attributes));
    applyParagraph({r.location, text.size()}, attributes);
}

void DocumentTextStorage::setText(const QString &text, const TextAttributes &attributes)
{
    if (m_editingDepth > 0) {
        const TextRange selection = selectedRange();
        m_staged->setText(text, attributes);
        if (!std::exchange(m_staging, true))
            m_staged->setSelectedRange(selection);
        return;
    }
    const TextRange selection = selectedRange();
    {
        m_mirror->setText(text, attributes);
        const OwnChange own(m_ownChanges);
        QTextCursor cursor(m_document);
        cursor.beginEditBlock();
        cursor.select(QTextCursor::Document);
        cursor.insertText(text, charFormat(attributes));
        cursor.endEditBlock();
        applyParagraph({0, text.size()}, attributes);
    }
    setSelectedRange(selection);
}

void DocumentTextStorage::layStaged()
{
    m_staging = false;
    const OwnChange own(m_ownChanges);
    const AttributedText &staged = *m_staged;
    const QString &now = staged.text();
    const QString before = m_mirror->text();

    if (const TextDifference difference = textDifference(before, now); !difference.isEmpty()) {
        const TextRange inserted = difference.after;
        layText(difference.before, inserted);
        // The copy takes the new text with the runs it was laid with, so that they
        // compare equal below.
        m_mirror->replaceCharacters(difference.before, now.mid(inserted.location, inserted.length), {});
        staged.enumerateRuns(inserted, [&](const TextRange &run, const TextAttributes &attributes) {
            m_mirror->setAttributes(run, attributes);
        });
    }

    // The runs as the batch left them, against the runs as the document has them. The
    // staged copy stays as it is until the next batch, so its attributes are pointed at,
    // not copied: a long note has thousands of runs.
    m_stagedRuns.clear();
    staged.enumerateRuns({0, staged.length()}, [&](const TextRange &run, const TextAttributes &attributes) {
        m_stagedRuns.emplace_back(run, &attributes);
    });
    struct Change {
        TextRange run;
        const TextAttributes *attributes;
        bool paragraphChanged;
    };
    std::vector<Change> changes;
    std::size_t next = 0;
    m_mirror->enumerateRuns({0, m_mirror->length()}, [&](const TextRange &laid, const TextAttributes &attributes) {
        while (next < m_stagedRuns.size() && m_stagedRuns[next].first.end() <= laid.location)
            ++next;
        for (std::size_t i = next; i < m_stagedRuns.size() && m_stagedRuns[i].first.location < laid.end(); ++i) {
            const auto &[run, wanted] = m_stagedRuns[i];
            if (attributes == *wanted)
                continue;
            const qsizetype from = std::max(laid.location, run.location);
            const qsizetype to = std::min(laid.end(), run.end());
            const bool paragraphChanged = attributes.paragraph != wanted->paragraph;
            if (!changes.empty() && changes.back().run.end() == from && changes.back().attributes == wanted) {
                changes.back().run.length = to - changes.back().run.location;
                changes.back().paragraphChanged |= paragraphChanged;
            } else {
                changes.push_back({{from, to - from}, wanted, paragraphChanged});
            }
        }
    });
    qsizetype changedLength = 0;
    for (const Change &change : changes)
        changedLength += change.run.length;
    // Restyling most of a long note a run at a time splits and joins the document's
    // pieces thousands of times, as when a note just shown plain gets its first styling:
    // laying the whole text anew with its runs is quicker.
    constexpr std::size_t kManyChanges = 256;
    if (changes.size() > kManyChanges && changedLength * 2 > now.size()) {
        // The text is the same: the reader stays where they were, wherever the caret is.
        m_keptScroll = {m_editor->horizontalScrollBar()->value(), m_editor->verticalScrollBar()->value()};
        layText({0, now.size()}, {0, now.size()});
    } else if (!changes.empty()) {
        QTextCursor cursor(m_document);
        for (const Change &change : changes) {
            cursor.setPosition(int(change.run.location));
            cursor.setPosition(int(change.run.end()), QTextCursor::KeepAnchor);
            cursor.setCharFormat(charFormat(*change.attributes));
            if (change.paragraphChanged)
                applyParagraph(change.run, *change.attributes);
        }
    }

    const TextRange selection = staged.selectedRange();
    // The staged copy is what the document holds now; the old copy's room is kept for
    // the next batch that stages.
    std::swap(m_mirror, m_staged);
    m_staged->setText({}, {});
    if (!(selection == selectedRange()))
        setSelectedRange(selection);
}

void DocumentTextStorage::layText(const TextRange &replaced, const TextRange &staged)
{
    QTextCursor cursor(m_document);
    cursor.setPosition(int(replaced.location));
    cursor.setPosition(int(replaced.end()), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    // The text goes in run by run with the look it ends up with: laid plain and restyled
    // after, every run would be split out of the plain one again. New paragraphs take the
    // format of the one they were typed into; each stretch of the same paragraph style is
    // then set once over its whole length.
    const QString &text = m_staged->text();
    std::vector<std::pair<TextRange, const ParagraphSpec *>> paragraphs;
    m_staged->enumerateRuns(staged, [&](const TextRange &run, const TextAttributes &attributes) {
        cursor.insertText(text.mid(run.location, run.length), charFormat(attributes));
        if (!attributes.paragraph)
            return;
        if (!paragraphs.empty() && paragraphs.back().first.end() == run.location &&
            *paragraphs.back().second == *attributes.paragraph)
            paragraphs.back().first.length += run.length;
        else
            paragraphs.emplace_back(run, &*attributes.paragraph);
    });
    for (const auto &[range, paragraph] : paragraphs) {
        cursor.setPosition(int(range.location));
        cursor.setPosition(int(range.end()), QTextCursor::KeepAnchor);
        cursor.mergeBlockFormat(blockFormat(*paragraph));
    }
}

void DocumentTextStorage::beginEditing()
{
    if (m_editingDepth++ == 0) {
        m_batch = std::make_unique<QTextCursor>(m_document);
        m_batch->beginEditBlock();
    }
}

void DocumentTextStorage::endEditing()
{
    if (m_editingDepth > 0 && --m_editingDepth == 0 && m_batch) {
        if (m_staging)
            layStaged();
        {
            // The document tells of the batch's changes only now; the copy has them.
            const OwnChange own(m_ownChanges);
            m_batch->endEditBlock();
        }
        // Put back once the document is laid out again, when the scroll range is its own.
        if (const auto scroll = std::exchange(m_keptScroll, std::nullopt)) {
            m_editor->horizontalScrollBar()->setValue(scroll->x());
            m_editor->verticalScrollBar()->setValue(scroll->y());
        }
        m_batch.reset();
    }
}

void DocumentTextStorage::setTypingAttributes(const TextAttributes &attributes)
{
    if (!(attributes == m_typingAttributes))
        m_paragraphHeights.clear();
    m_typingAttributes = attributes;
    setEditorCharFormat(charFormat(attributes));
}

void DocumentTextStorage::applyTypingAttributes()
{
    setEditorCharFormat(charFormat(m_typingAttributes));
}

void DocumentTextStorage::setEditorCharFormat(const QTextCharFormat &format)
{
    // With text selected the editor gives the selection the format as well: the copy
    // follows at once, as the document may tell of it only when a batch ends.
    const QTextCursor cursor = m_editor->textCursor();
    const OwnChange own(m_ownChanges);
    m_editor->setCurrentCharFormat(format);
    if (cursor.hasSelection()) {
        const qsizetype length = cursor.selectionEnd() - cursor.selectionStart();
        followDocument(cursor.selectionStart(), length, length);
    }
}

void DocumentTextStorage::invalidateDisplay(const TextRange &)
{
    if (m_redrawQueued)
        return;
    m_redrawQueued = true;
    QTimer::singleShot(0, this, [this] {
        m_redrawQueued = false;
        m_editor->viewport()->update();
    });
}

void DocumentTextStorage::refreshFormats()
{
    // The theme's colours may have changed: every look is made again.
    m_recentFormats.clear();
    std::vector<std::pair<TextRange, TextAttributes>> runs;
    enumerateRuns({0, length()}, [&](const TextRange &run, const TextAttributes &a) { runs.emplace_back(run, a); });
    const OwnChange own(m_ownChanges);
    QTextCursor cursor(m_document);
    cursor.beginEditBlock();
    for (const auto &[run, attributes] : runs) {
        cursor.setPosition(int(run.location));
        cursor.setPosition(int(run.end()), QTextCursor::KeepAnchor);
        cursor.setCharFormat(charFormat(attributes));
    }
    cursor.endEditBlock();
    setEditorCharFormat(charFormat(m_typingAttributes));
}

std::vector<double> DocumentTextStorage::paragraphHeights(const QString &text) const
{
    // A long note's paragraphs mostly repeat from one keystroke to the next; past this
    // many the cache starts over rather than grow with every line ever typed.
    constexpr qsizetype kMaxCachedParagraphs = 50000;
    const double width = m_document->textWidth();
    if (width != m_measuredWidth || m_paragraphHeights.size() > kMaxCachedParagraphs) {
        m_paragraphHeights.clear();
        m_measuredWidth = width;
    }

    const QList<QStringView> paragraphs = QStringView(text).split(u'\n');
    QStringList unmeasured;
    QSet<QStringView> pending;
    for (const QStringView paragraph : paragraphs) {
        if (!m_paragraphHeights.contains(paragraph.toString()) && !pending.contains(paragraph)) {
            pending.insert(paragraph);
            unmeasured << paragraph.toString();
        }
    }
    if (!unmeasured.isEmpty()) {
        // All new paragraphs go through one scratch document, laid out once, set up like
        // the editor's own.
        QTextDocument scratch;
        scratch.setDefaultFont(m_document->defaultFont());
        scratch.setDefaultTextOption(m_document->defaultTextOption());
        scratch.setDocumentMargin(m_document->documentMargin());
        scratch.setTextWidth(width);
        QTextCursor cursor(&scratch);
        // A paragraph's height is how far it pushes the next one down: a line height
        // above 100% adds its leading below the last line too, outside the bounding
        // rectangle of the paragraph. One empty paragraph more gives the last its next.
        cursor.insertText(unmeasured.join(u'\n') + u'\n', charFormat(m_typingAttributes));
        if (m_typingAttributes.paragraph) {
            cursor.select(QTextCursor::Document);
            cursor.mergeBlockFormat(blockFormat(*m_typingAttributes.paragraph));
        }
        QAbstractTextDocumentLayout *layout = scratch.documentLayout();
        qsizetype i = 0;
        for (QTextBlock block = scratch.begin(); block.next().isValid() && i < unmeasured.size();
             block = block.next(), ++i) {
            const double advance = layout->blockBoundingRect(block.next()).top() - layout->blockBoundingRect(block).top();
            m_paragraphHeights.insert(unmeasured.at(i), advance);
        }
    }

    std::vector<double> heights;
    heights.reserve(std::size_t(paragraphs.size()));
    for (const QStringView paragraph : paragraphs)
        heights.push_back(m_paragraphHeights.value(paragraph.toString()));
    return heights;
}

} // namespace scrivlet
