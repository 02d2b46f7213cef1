#pragma once

#include "platform/TextStorage.h"

#include <QHash>
#include <QObject>
#include <QPoint>

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

class QColor;
class QTextBlockFormat;
class QTextCharFormat;
class QTextCursor;
class QTextDocument;
class QTextEdit;

namespace scrivlet {

class AttributedText;

// The editor's document seen as the text storage the text passes run on. The passes'
// attributes are kept whole in each character format, so they read back exactly what
// they laid; the visible format is made from them through the theme's colours.
class DocumentTextStorage final : public QObject, public TextStorage {
    Q_OBJECT
public:
    using ColorResolver = std::function<QColor(const QString &role)>;

    DocumentTextStorage(QTextEdit *editor, ColorResolver colors);
    ~DocumentTextStorage() override;

    QString string() const override;
    qsizetype length() const override;

    TextRange selectedRange() const override;
    void setSelectedRange(const TextRange &range) override;

    TextAttributes attributesAt(qsizetype index, TextRange *effectiveRange = nullptr) const override;
    void enumerateRuns(const TextRange &range, const RunVisitor &visit) const override;
    void addAttributes(const TextRange &range, const TextAttributes &attributes) override;
    void setAttributes(const TextRange &range, const TextAttributes &attributes) override;
    void removeAttributes(const TextRange &range, unsigned fields) override;

    void replaceCharacters(const TextRange &range, const QString &text, const TextAttributes &attributes) override;
    void setText(const QString &text, const TextAttributes &attributes) override;

    void beginEditing() override;
    void endEditing() override;

    TextStorageDelegate *delegate() const override { return m_delegate; }
    void setDelegate(TextStorageDelegate *delegate) override { m_delegate = delegate; }

    TextAttributes typingAttributes() const override { return m_typingAttributes; }
    void setTypingAttributes(const TextAttributes &attributes) override;

    void invalidateDisplay(const TextRange &range) override;

    // Heights in the document's layout units, as the editor draws them. Each distinct
    // paragraph is laid out once for the editor's width and typing attributes: a
    // keystroke in a long list measures the line it changed, not the whole note.
    std::vector<double> paragraphHeights(const QString &text) const override;

    // Text the user types next takes the typing attributes, not those of the character
    // before it: a keyword's colour doesn't run on into the words typed after it.
    void applyTypingAttributes();
    // Re-derives every visible format from the stored attributes, as after a theme change.
    void refreshFormats();
    // Whether the copy the passes read is the document's text and attributes exactly;
    // for the tests.
    bool mirrorsDocument() const;

private:
    template<typename Change>
    void changeRuns(const TextRange &range, Change change);
    void enumerateDocumentRuns(const TextRange &range, const RunVisitor &visit) const;
    QString documentText(qsizetype from, qsizetype to) const;
    qsizetype documentLength() const;
    // The text and runs the passes read: the staged copy while a batch stages, else the
    // copy of the document.
    const AttributedText &current() const;
    void reloadMirror();
    // Brings the copy up to the document after a change in `removed` characters from
    // `position`, now `added` characters.
    void followDocument(qsizetype position, qsizetype removed, qsizetype added);
    void setEditorCharFormat(const QTextCharFormat &format);
    // Brings the document to the text and runs of the batch's staged copy, touching only
    // the text between their common start and end and the runs whose attributes differ.
    void layStaged();
    // Replaces `replaced` in the document by the staged copy's text and runs in `staged`.
    void layText(const TextRange &replaced, const TextRange &staged);
    QTextCharFormat charFormat(const TextAttributes &attributes) const;
    QTextCharFormat makeCharFormat(const TextAttributes &attributes) const;
    const TextAttributes &attributesOfFormat(int formatIndex) const;
    QTextBlockFormat blockFormat(const ParagraphSpec &paragraph) const;
    void applyParagraph(const TextRange &range, const TextAttributes &attributes);
    TextRange clamp(const TextRange &range) const;

    QTextEdit *m_editor;
    QTextDocument *m_document;
    ColorResolver m_colors;
    TextStorageDelegate *m_delegate = nullptr;
    TextAttributes m_typingAttributes;
    int m_editingDepth = 0;
    // Holds the document's edit block open while a batch lasts, so that the document is
    // laid out once when the batch ends rather than after each change within it.
    std::unique_ptr<QTextCursor> m_batch;
    // A batch that takes a whole new text is staged in memory and laid into the document
    // when it ends. A restyle sets the note's text anew and styles it from nothing; laid
    // straight into the document, that would be every paragraph shaped and laid out
    // again, where mostly nothing has changed.
    // The document's text and attributes, kept in memory: reading them from the document
    // walks every paragraph, which on a long note was most of what a keystroke cost.
    std::unique_ptr<AttributedText> m_mirror;
    // The document's changes made by the storage itself, under way.
    int m_ownChanges = 0;
    std::unique_ptr<AttributedText> m_staged;
    bool m_staging = false;
    // Where the view was scrolled to before the batch laid the whole text anew.
    std::optional<QPoint> m_keptScroll;
    std::vector<std::pair<TextRange, const TextAttributes *>> m_stagedRuns;
    bool m_redrawQueued = false;
    // Node-based, so that a reference to one entry outlives the insertion of another.
    mutable std::unordered_map<int, TextAttributes> m_attributesByFormat;
    // The visible formats of the attributes most recently laid. A restyle lays the same
    // few looks over thousands of runs; each is made once, for the theme and editor
    // font it was made with.
    mutable std::vector<std::pair<TextAttributes, QTextCharFormat>> m_recentFormats;
    mutable double m_recentFormatsFontSize = -1;
    // Paragraph heights by paragraph text, good for one text width and typing attributes.
    mutable QHash<QString, double> m_paragraphHeights;
    mutable double m_measuredWidth = -1;
};

} // namespace scrivlet
