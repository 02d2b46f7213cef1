#include "keywords/TextChangePipeline.h"

#include "keywords/EmojiRuns.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/KeywordLine.h"
#include "keywords/KeywordsLog.h"
#include "keywords/StorageBatch.h"
#include "keywords/StyleMarks.h"
#include "keywords/TriggerLinePatterns.h"
#include "notes/NoteViewModel.h"
#include "platform/NotificationBus.h"
#include "platform/TextStorage.h"
#include "shell/preferences/KeywordPreferences.h"

namespace scrivlet {

namespace {

QString rangeDescription(const TextRange &range)
{
    return u'{' % QString::number(range.location) % QStringLiteral(", ") % QString::number(range.length) % u'}';
}

// The whole line around `position` of `text`, with its line feed.
TextRange lineRangeIn(const QString &text, qsizetype position)
{
    const qsizetype at = qBound<qsizetype>(0, position, text.size());
    const qsizetype start = at == 0 ? 0 : text.lastIndexOf(u'\n', at - 1) + 1;
    const qsizetype feed = text.indexOf(u'\n', at);
    const qsizetype end = feed < 0 ? text.size() : feed + 1;
    return {start, end - start};
}

QString lineWithoutFeed(const QString &text, qsizetype position)
{
    const TextRange range = lineRangeIn(text, position);
    QString line = text.mid(range.location, range.length);
    if (line.endsWith(u'\n'))
        line.chop(1);
    return line;
}

// Lines as the checklist counts them: a trailing empty line is no line.
qsizetype countLines(const QString &text)
{
    if (text.isEmpty())
        return 0;
    return text.count(u'\n') + (text.endsWith(u'\n') ? 0 : 1);
}

qsizetype firstLineEnd(const QString &text)
{
    const qsizetype feed = text.indexOf(u'\n');
    return feed < 0 ? text.size() : feed;
}

void emptyChecklist(NoteViewModel &noteViewModel, bool &isList)
{
    if (const auto &manager = noteViewModel.mutableNote().checklistManager)
        manager->checklist.clear();
    isList = false;
}

} // namespace

TextChangePipeline::TextChangePipeline(const EditorContext &context, const EditRecord &edit, QString editorId)
    : m_context(context), m_edit(edit), m_editorId(std::move(editorId))
{
}

DefaultTextAttributes TextChangePipeline::defaultAttributes() const
{
    return DefaultTextAttributes(m_context.visualPreferences, m_context.miscPreferences);
}

QString TextChangePipeline::helpText(KeywordID id)
{
    switch (id) {
    case KeywordID::COUNT:
        return QStringLiteral("Every non-empty line will be counted as an 'item'. You will also get "
                              "word/character/sentence count information.");
    case KeywordID::SUM:
        return QStringLiteral("All the numbers in the text you write will be added together.");
    case KeywordID::AVG:
        return QStringLiteral("All the numbers in the text you write will averaged.");
    case KeywordID::MATH:
        return QStringLiteral("Type an '=' to calculate or convert.\n\n82 + 55 =\n20cm to in =\n$24 USD to CAD =\n\n"
                              "Use a colon to define a variable:\n\nguests : 5\nguests + 3 =");
    case KeywordID::TIMER:
        return QStringLiteral("Enter to start a stopwatch.\n\ntimer 5 - to countdown\ntimer 5:30 : laundry - to name a "
                              "countdown\n\ntimer pomo - to start a 25m/5m pomodoro.\n\ntimer 52 17 - will run a custom "
                              "pomodoro of 52mins/17mins\n\ntimer p - pause/resume\ntimer r - reset\ntimer s - "
                              "stop\n\ntimer breathe - to chill\n\nClick to pause\nDouble-click to stop");
    case KeywordID::PASTE:
        return QStringLiteral("Enter to start AutoPaste. Everything you copy will be added here.\n\nPress ESC to "
                              "stop.\n\nType paste(, ) to separate each item with a comma and space instead of a new "
                              "line.\n\nOr use whatever you want in the parentheses for a delimiter.");
    case KeywordID::CODE:
        return QStringLiteral("Add a colon followed by a language name to apply syntax highlighting to the text "
                              "below.\n\nExamples\ncode: swift\ncode: js\ncode: py\n\nDisables formatting strip on "
                              "paste.\nDisables all link features.");
    case KeywordID::LIST:
        return QStringLiteral("Each line of text will turn into a checkbox.");
    case KeywordID::CHECK:
        break;
    }
    return {};
}

bool TextChangePipeline::isLineOnlyEdit(const EditRecord &edit, QStringView currentLine,
                                        std::optional<KeywordID> keyword)
{
    const QString &changed = edit.lastModifiedContent;
    const bool insertionBelowFirstLine = edit.lastModifiedRange.length < 1 && !changed.isEmpty()
                                         && firstLineEnd(edit.preModifiedContent) < edit.lastModifiedRange.location;
    // A backtick or a line break can open or close a block of code, or shift every
    // line below: the whole note must be looked at again.
    const bool structural = changed == u"`" || changed == u"\n" || changed == u"\r";
    const bool inCodeFence = currentLine.startsWith(u"```");
    // A checklist's rows and a count's totals depend on every line of the note.
    const bool wholeNoteKind = keyword == KeywordID::LIST || keyword == KeywordID::COUNT;
    const bool typed = edit.lastModificationAction == UserActionType::keydown;
    return insertionBelowFirstLine && !structural && !inCodeFence && !wholeNoteKind && typed;
}

void TextChangePipeline::resetTextAttributes(TextStorage &storage, bool lineOnly, const QString &newText) const
{
    const TextAttributes defaults = defaultAttributes().plain();
    if (!newText.isEmpty()) {
        storage.setText(newText, defaults);
        return;
    }
    const TextRange range = lineOnly ? storage.lineRange(storage.selectedRange()) : TextRange{0, storage.length()};
    // Added, not set: the marks of other passes stay, and each pass clears its own.
    storage.addAttributes(range, defaults);
}

void TextChangePipeline::colorKeywordLine(KeywordID id, const QString &text, TextStorage &storage) const
{
    const KeywordDefinition *definition = m_context.keywords.definition(id);
    if (!definition)
        return;
    const QStringView firstLine = firstLineOf(text);
    const QString normalized = normalizedKeywordLine(firstLine, m_context.keywords);
    if (normalized.isEmpty())
        return;
    const qsizetype at = firstLine.indexOf(normalized, 0, Qt::CaseInsensitive);
    if (at < 0)
        return;

    const TextRange range{at, normalized.size()};
    TextAttributes mark;
    mark.custom = CustomAttribute{QStringLiteral("keyword"), keywordName(id)};
    if (!definition->colorKeyPath.isEmpty())
        mark.foreground = definition->colorKeyPath;
    storage.addAttributes(range, mark);
    storage.invalidateDisplay(range);
}

void TextChangePipeline::postHelpText(const TextStorage &storage, const QString &text, bool hideFirst) const
{
    const QString name = QStringLiteral("updateHintText");
    if (hideFirst) {
        m_context.bus.post(name, {{QStringLiteral("shouldShowHelpText"), false},
                                  {QStringLiteral("helpText"), QString()},
                                  {QStringLiteral("editorId"), m_editorId}});
    }
    // The help belongs below a lone first line: it goes once anything is written under
    // it. Only the first line feed is looked for, however long the note.
    const QString content = storage.string();
    const qsizetype feed = content.indexOf(u'\n');
    const bool show = feed < 0 || feed == content.size() - 1;
    m_context.bus.post(name, {{QStringLiteral("shouldShowHelpText"), show},
                              {QStringLiteral("helpText"), text},
                              {QStringLiteral("editorId"), m_editorId}});
}

void TextChangePipeline::runGuarded(TextStorage &storage, const TextPasses::Pass &pass,
                                    const TextPassInput &input) const
{
    if (pass)
        withSelectionGuard(storage, [&] { pass(input); });
}

void TextChangePipeline::processTextChange(TextStorage *storage, NoteViewModel &noteViewModel,
                                           std::optional<KeywordID> &activeKeyword, bool &isList, bool forceFull)
{
    if (!storage)
        return;

    const QString text = storage->string();
    const bool valid = hasValidKeyword(text, m_context.keywords);
    const std::optional<KeywordID> keyword = detectKeywordID(text, m_context.keywords);
    const TextRange currentLineRange = storage->lineRange(storage->selectedRange());
    const QStringView currentLine = QStringView(text).mid(currentLineRange.location, currentLineRange.length);
    const bool lineOnly = isLineOnlyEdit(m_edit, currentLine, keyword);
    const DefaultTextAttributes defaults = defaultAttributes();
    std::vector<TextRange> restyledLines;
    const TextPassInput input{*storage, noteViewModel, m_edit, lineOnly, forceFull, &restyledLines};

    if (!valid) {
        if (activeKeyword) {
            // The note stopped being of a kind: none of its kind's looks may stay.
            activeKeyword.reset();
            if (isList)
                emptyChecklist(noteViewModel, isList);
            withSelectionGuard(*storage, [&] { resetTextAttributes(*storage, false, {}); });
            storage->setTypingAttributes(defaults.plain());
        }
        postHelpText(*storage, {}, true);
    } else {
        // A valid keyword line is one that selected a keyword.
        Q_ASSERT(keyword);
        if (keyword != KeywordID::LIST && isList)
            emptyChecklist(noteViewModel, isList);

        switch (*keyword) {
        case KeywordID::COUNT:
        case KeywordID::SUM:
        case KeywordID::AVG: {
            activeKeyword = keyword;
            const TextPasses::Pass &total = *keyword == KeywordID::SUM   ? m_passes.sum
                                            : *keyword == KeywordID::AVG ? m_passes.average
                                                                         : m_passes.count;
            // The total's pass colours the keyword as its first step; until it is
            // there, the word still shows the note's kind.
            if (total)
                runGuarded(*storage, total, input);
            else
                withSelectionGuard(*storage, [&] { colorKeywordLine(*keyword, storage->string(), *storage); });
            postHelpText(*storage, helpText(*keyword), *keyword == KeywordID::AVG);
            break;
        }
        case KeywordID::MATH:
            if (!lineOnly)
                withSelectionGuard(*storage, [&] { resetTextAttributes(*storage, false, {}); });
            activeKeyword = KeywordID::MATH;
            runGuarded(*storage, m_passes.processAllMath, input);
            postHelpText(*storage, helpText(KeywordID::MATH), false);
            colorKeywordLine(KeywordID::MATH, storage->string(), *storage);
            break;
        case KeywordID::TIMER:
        case KeywordID::PASTE:
        case KeywordID::CODE:
            activeKeyword = keyword;
            withSelectionGuard(*storage, [&] { colorKeywordLine(*keyword, storage->string(), *storage); });
            postHelpText(*storage, helpText(*keyword), false);
            break;
        case KeywordID::LIST:
            runListBranch(input, activeKeyword, isList, defaults);
            break;
        case KeywordID::CHECK:
            // No first line selects CHECK; should one ever, the note is plain.
            activeKeyword.reset();
            if (isList)
                emptyChecklist(noteViewModel, isList);
            postHelpText(*storage, {}, true);
            break;
        }
    }

    applyStyling(input, keyword, activeKeyword, defaults);
}

void TextChangePipeline::runListBranch(const TextPassInput &input, std::optional<KeywordID> &activeKeyword,
                                       bool &isList, const DefaultTextAttributes &defaults)
{
    TextStorage &storage = input.storage;
    const QString text = storage.string();
    const QString &pre = m_edit.preModifiedContent;
    const QString &changed = m_edit.lastModifiedContent;
    const qsizetype location = m_edit.lastModifiedRange.location;
    const auto action = m_edit.lastModificationAction;
    const auto &manager = input.noteViewModel.mutableNote().checklistManager;

    const bool lineRemoved = action == UserActionType::delete_ && countLines(pre) > countLines(text);
    const bool isDelete = changed.size() == 1 && changed.at(0) == EditRecord::kBackwardDelete;
    const bool notSlash = changed != u"/" || isDelete;

    QString blankTest = lineWithoutFeed(text, location);
    blankTest.removeIf([](QChar c) { return c.isSpace(); });
    // A row still being typed ("/" starts a check mark) has nothing to draw yet.
    const bool lineBlank = blankTest.isEmpty() || blankTest == u"/" || blankTest == u"//";

    const auto item = manager ? manager->itemAt(location) : nullptr;
    const bool itemHidden = item && item->isHidden;

    const bool rebuild = !notSlash || changed == u"/" || location <= firstLineEnd(pre)
                         || m_edit.lastModifiedRange.length > 0 || input.forceFull || lineRemoved || isDelete
                         || lineBlank || itemHidden;

    const auto runSteps = [&](std::optional<qsizetype> from, bool drawToo) {
        if (m_passes.createCheckboxes)
            m_passes.createCheckboxes(input, from);
        if (m_passes.assignRanges)
            m_passes.assignRanges(input, from);
        if (drawToo && m_passes.drawRows)
            m_passes.drawRows(input, from);
    };

    if (rebuild) {
        activeKeyword = KeywordID::LIST;
        if (manager)
            manager->keywordLineText = firstLineOf(text).toString();
        isList = true;
        const TextAttributes listAttributes = defaults.list();
        storage.setTypingAttributes(listAttributes);
        withSelectionGuard(storage, [&] { storage.addAttributes({0, storage.length()}, listAttributes); });
        colorKeywordLine(KeywordID::LIST, storage.string(), storage);
        runSteps(std::nullopt, true);
    } else {
        const qsizetype position = action == UserActionType::delete_ ? storage.selectedRange().location : location;
        const QString oldLine = lineWithoutFeed(pre, location);
        const bool hasLineBreak = changed.contains(u'\n') || changed.contains(u'\r');
        if (hasLineBreak || (oldLine.trimmed().isEmpty() && !changed.trimmed().isEmpty())) {
            runSteps(position, true);
        } else {
            const QString newLine = lineWithoutFeed(storage.string(), position);
            if (m_passes.checkStateChanged && m_passes.checkStateChanged(oldLine, newLine))
                runSteps(position, true);
            // A row that wrapped onto another line pushes the checkboxes below it down.
            if (m_passes.measureLineHeight
                && m_passes.measureLineHeight(oldLine) < m_passes.measureLineHeight(newLine))
                runSteps(position, false);
        }
    }

    postHelpText(storage, helpText(KeywordID::LIST), false);
}

void TextChangePipeline::colorTriggerLine(TextStorage &storage, KeywordID id) const
{
    const KeywordDefinition *definition = m_context.keywords.definition(id);
    if (!definition)
        return;
    // Only the first line is looked at, so a long note costs no more than a short one.
    const QString firstLine = firstLineOf(storage.string()).toString();
    const auto range = id == KeywordID::TIMER ? detectTimerLine(firstLine, m_context.keywords)
                                              : detectPasteLine(firstLine, m_context.keywords);
    if (!range || range->isEmpty())
        return;
    if (id == KeywordID::TIMER)
        qCDebug(lcKeywords, "KeywordColors: Applying timer color to range %s", qUtf8Printable(rangeDescription(*range)));
    else
        qCDebug(lcKeywords, "KeywordColors: Applying paste color to range %s", qUtf8Printable(rangeDescription(*range)));
    TextAttributes colour;
    colour.foreground = definition->colorKeyPath;
    storage.addAttributes(*range, colour);
}

void TextChangePipeline::applyStyling(const TextPassInput &input, std::optional<KeywordID> keyword,
                                      std::optional<KeywordID> activeKeyword, const DefaultTextAttributes &defaults)
{
    TextStorage &storage = input.storage;

    colorTriggerLine(storage, KeywordID::TIMER);
    colorTriggerLine(storage, KeywordID::PASTE);

    const QString text = storage.string();
    const TextRange scope = input.lineOnly ? storage.lineRange(storage.selectedRange()) : TextRange{0, text.size()};

    // The editor's text system on this platform doesn't switch emoji to a font of their
    // own, so the runs are found by their code points and given the emoji font here,
    // at the emoji size of the chosen font step.
    TextAttributes emoji;
    emoji.font = defaults.emojiFont();
    for (const TextRange &run : findEmojiRuns(text, scope))
        storage.addAttributes(run, emoji);

    removeStyles(storage, scope, QStringLiteral("markdown"), defaults.plain());
    if (input.lineOnly && input.restyledLines) {
        for (const TextRange &line : *input.restyledLines)
            removeStyles(storage, line, QStringLiteral("markdown"), defaults.plain());
    }

    if (activeKeyword == KeywordID::CODE) {
        if (m_passes.codeHighlighting) {
            withSelectionGuard(storage, [&] {
                uxTextStorage(&storage, [&](TextStorage &) { m_passes.codeHighlighting(input); });
            });
        }
    } else {
        if (m_passes.applyMarkdown)
            m_passes.applyMarkdown(input);
        if (m_passes.fencedCode)
            m_passes.fencedCode(input);
    }

    const bool allLinksInFull = m_passes.showsAllLinksInFull && m_passes.showsAllLinksInFull();
    const bool isCode = keyword == KeywordID::CODE;
    if (!m_context.keywords.preferences().disableLinkHighlighting() && !allLinksInFull && !isCode) {
        if (m_passes.updateScrivlinks)
            m_passes.updateScrivlinks(input, storage.selectedRange().location, m_edit.lastModificationAction);
    } else {
        if (m_passes.unshrinkLinks)
            m_passes.unshrinkLinks(input);
        if (!isCode && m_passes.colorLinks)
            m_passes.colorLinks(input);
    }
}

} // namespace scrivlet
