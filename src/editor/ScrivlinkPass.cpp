#include "editor/ScrivlinkPass.h"

#include "editor/ScrivlinkExpansion.h"
#include "editor/ScrivlinkStyles.h"
#include "keywords/EditorContext.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/NoteEditorSession.h"
#include "keywords/StorageBatch.h"
#include "keywords/StyleMarks.h"
#include "notes/NoteViewModel.h"
#include "notes/ScrivlinkManager.h"
#include "platform/NotificationBus.h"
#include "platform/MessagePillTypes.h"
#include "shell/preferences/KeywordPreferences.h"

namespace scrivlet {

namespace {

constexpr quint16 kDeleteKeyCode = 51;

// Puts `text` in `range` as a change of the pass, not of the user.
void replaceQuietly(TextStorage &storage, const TextRange &range, const QString &text)
{
    uxTextStorage(&storage, [&](TextStorage &batch) {
        TextAttributes attributes = batch.attributesAt(range.location);
        attributes.clear(TextAttributes::Custom);
        batch.replaceCharacters(range, text, attributes);
    });
}

} // namespace

ScrivlinkPass::ScrivlinkPass(NoteEditorSession &session, const EditorContext &context)
    : m_session(session), m_context(context), m_shortDebouncer(context.clock, kShortDelay),
      m_longDebouncer(context.clock, kLongDelay)
{
    TextPasses &passes = session.passes();
    passes.updateScrivlinks = [this](const TextPassInput &input, qsizetype, std::optional<UserActionType>) {
        // A note that was just opened or restyled shows its links short at once, and so
        // does the link the user just asked to shorten.
        debouncedUpdateScrivlinks(input.forceFull || manager().shorteningFromClick);
    };
    passes.unshrinkLinks = [this](const TextPassInput &input) {
        m_shortDebouncer.cancel();
        m_longDebouncer.cancel();
        unshrinkLinks(input.storage, manager());
    };
    passes.colorLinks = [this](const TextPassInput &input) {
        removeStyles(input.storage, {0, input.storage.length()}, scrivlinkTag(),
                     m_session.pipeline().defaultAttributes().plain());
        highlightFullLinks(input.storage, m_context.keywords.preferences().disableLinkHighlighting());
    };
    passes.showsAllLinksInFull = [this] { return m_showsAllInFull; };
}

ScrivlinkPass::~ScrivlinkPass()
{
    TextPasses &passes = m_session.passes();
    passes.updateScrivlinks = nullptr;
    passes.unshrinkLinks = nullptr;
    passes.colorLinks = nullptr;
    passes.showsAllLinksInFull = nullptr;
}

ScrivlinkManager &ScrivlinkPass::manager() const
{
    return *m_session.noteViewModel().note().scrivlinkManager;
}

ScrivlinkSettings ScrivlinkPass::settings() const
{
    ScrivlinkSettings settings;
    settings.textProcessingSuspended = m_processingSuspended;
    settings.isCodeNote = m_session.activeKeyword() == KeywordID::CODE;
    settings.disableLinkShortening = m_context.keywords.preferences().disableLinkShortening();
    return settings;
}

void ScrivlinkPass::debouncedUpdateScrivlinks(bool flushNow)
{
    m_shortDebouncer.cancel();
    m_longDebouncer.cancel();
    if (m_session.activeKeyword() == KeywordID::CODE)
        return;
    const qsizetype length = m_session.storage().length();
    if (length >= kDebounceThreshold && !flushNow) {
        // A long note is scanned and rewritten once typing pauses, not on every key.
        Debouncer &debouncer = length < kLongNoteThreshold ? m_shortDebouncer : m_longDebouncer;
        debouncer.call([this] {
            TextStorage &storage = m_session.storage();
            const QString before = storage.string();
            updateNow();
            // The change came after the editor stored the text: the note must hold it too.
            if (storage.string() != before)
                m_session.noteViewModel().mutableNote().content = storage.string();
        });
        return;
    }
    updateNow();
}

void ScrivlinkPass::flushPendingUpdate()
{
    m_shortDebouncer.flush();
    m_longDebouncer.flush();
}

bool ScrivlinkPass::hasPendingUpdate() const
{
    return m_shortDebouncer.isPending() || m_longDebouncer.isPending();
}

void ScrivlinkPass::updateNow()
{
    if (m_session.activeKeyword() == KeywordID::CODE)
        return;
    TextStorage &storage = m_session.storage();
    ScrivlinkManager &links = manager();
    const bool fromClick = links.shorteningFromClick;
    const ScrivlinkSettings current = settings();
    uxTextStorage(&storage, [&](TextStorage &batch) {
        const bool changed = updateTextWithTruncatedHyperlinks(batch, batch.selectedRange().location, links, current);
        applyScrivlinkStyles(batch, links.scrivlinks, m_session.pipeline().defaultAttributes().plain());
        highlightFullLinks(batch, m_context.keywords.preferences().disableLinkHighlighting());
        // A link shortened on request leaves the caret right behind it; while typing, the
        // caret has moved with the text already.
        if (changed && fromClick)
            batch.setSelectedRange({links.locationOfLastShortenedLink, 0});
    });
}

bool ScrivlinkPass::toggleScrivlinkAt(qsizetype position)
{
    if (m_context.keywords.preferences().disableLinkHighlighting())
        return false;
    TextStorage &storage = m_session.storage();
    ScrivlinkManager &links = manager();
    flushPendingUpdate();
    const QString text = storage.string();
    const auto toggle = toggleScrivlink(position, text, links);
    if (!toggle)
        return false;
    // The toggle is a step of its own, apart from what was typed before it.
    m_context.bus.post(QStringLiteral("flushAndRegisterUndo"), {{QStringLiteral("editorId"), m_session.editorId()}});

    if (toggle->expanded) {
        m_session.recordEdit(text, toggle->range, toggle->replacement, UserActionType::mouseDown);
        replaceQuietly(storage, toggle->range, toggle->replacement);
        const qsizetype caret = toggle->range.location + toggle->replacement.size();
        storage.setSelectedRange({caret, 0});
        // The caret would stand right before the last character: a blank behind it
        // gives the user somewhere to type on.
        if (caret == storage.length() - 1)
            replaceQuietly(storage, {storage.length(), 0}, QStringLiteral(" "));
        storage.setSelectedRange({caret, 0});
        m_session.textDidChange();
        return true;
    }

    qsizetype caret = toggle->range.end() + 1;
    if (toggle->range.end() < text.size() && text.at(toggle->range.end()) == u'.')
        ++caret;
    if (caret > text.size()) {
        m_session.recordEdit(text, {text.size(), 0}, QStringLiteral(" "), UserActionType::mouseDown);
        replaceQuietly(storage, {text.size(), 0}, QStringLiteral(" "));
        caret = storage.length();
    }
    storage.setSelectedRange({caret, 0});
    links.shorteningFromClick = true;
    if (m_context.keywords.preferences().disableLinkShortening())
        links.manualToggledUrl = toggle->replacement;
    m_session.setForceProcessing(true);
    m_session.textDidChange();
    // A link that couldn't be shortened must not pass its request on to the next one.
    links.shorteningFromClick = false;
    return true;
}

void ScrivlinkPass::toggleScrivlinkAtCaret()
{
    if (m_context.keywords.preferences().disableLinkHighlighting())
        return;
    TextStorage &storage = m_session.storage();
    const qsizetype caret = storage.selectedRange().location;
    storage.setSelectedRange({caret, 0});
    toggleScrivlinkAt(caret);
}

ScrivlinkPass::KeyDecision ScrivlinkPass::preventScrivlinkEditing(const std::optional<ScrivlinkKeyPress> &event)
{
    TextStorage &storage = m_session.storage();
    const TextRange selection = storage.selectedRange();
    if (selection.length > 0)
        return KeyDecision::LetThrough;
    ScrivlinkManager &links = manager();
    if (links.scrivlinks.empty())
        return KeyDecision::LetThrough;
    const QString text = storage.string();
    // Typing since an update that is still waiting has moved the links.
    if (hasPendingUpdate())
        updateScrivlinkRanges(text, links);

    const qsizetype position = selection.location;
    if (event && event->keyCode == kDeleteKeyCode) {
        for (const Scrivlink &link : links.scrivlinks) {
            if (position > link.currentRange.location && position <= link.currentRange.end()) {
                storage.setSelectedRange(link.currentRange);
                return KeyDecision::LinkSelected;
            }
        }
        return KeyDecision::LetThrough;
    }
    if (!shouldBlockEdit(text, selection, event ? event->characters : QString(), event, links))
        return KeyDecision::LetThrough;
    m_context.bus.postMessagePill(QStringLiteral("Shortened links can't be edited. Expand before editing."),
                                  MessagePillTypes::warning());
    return KeyDecision::Refused;
}

QString ScrivlinkPass::expandedText(const TextRange &range) const
{
    return expandAllScrivlinks(m_session.storage().substring(range), manager().scrivlinks);
}

void ScrivlinkPass::setShowsAllLinksInFull(bool show)
{
    if (show == m_showsAllInFull)
        return;
    m_showsAllInFull = show;
    flushPendingUpdate();
    TextStorage &storage = m_session.storage();
    ScrivlinkManager &links = manager();
    withSelectionGuard(storage, [&] { toggleShowAllFullLinksTemporarily(show, storage, links); });
    uxTextStorage(&storage, [&](TextStorage &batch) {
        applyScrivlinkStyles(batch, links.scrivlinks, m_session.pipeline().defaultAttributes().plain());
        highlightFullLinks(batch, m_context.keywords.preferences().disableLinkHighlighting());
    });
    m_session.noteViewModel().mutableNote().content = storage.string();
}

} // namespace scrivlet
