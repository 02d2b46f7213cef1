#pragma once

#include "calculation/MathManager.h"
#include "platform/TextAttributes.h"
#include "platform/TextRange.h"

#include <QHash>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace scrivlet {

class ConversionService;
class MathPreferences;
class NotificationBus;
class TextStorage;

// How the text came to change, as far as the math pass cares: a keystroke inside one
// line below the first recalculates that line first and then the others without
// rebuilding the variables; anything else rebuilds them from the top.
struct MathEdit {
    // The edit touched the keyword line.
    bool firstLineTouched = false;
    // The inserted text holds a line break.
    bool hasLineBreak = false;
    // The edit replaced or removed text rather than only inserting.
    bool rangeReplaced = false;
    // Where the edit happened, in the text as it was before.
    qsizetype editLocation = 0;
    bool pasted = false;
    // A backward delete: the caret tells the line, not the edit location.
    bool deleted = false;
    // The note was opened or is restyled as a whole: everything is worked out anew.
    bool wholeNote = false;
};

// The calculation of a math note. Every line ending in "=" gets its result written
// behind the "="; a line "name: value" defines a variable for the lines below it; and
// the results, the definitions and the uses of variables are marked so that the editor
// can colour them and keep the caret out of a result.
//
// One per editor: it owns that editor's variables.
class ProcessMath final {
    Q_DISABLE_COPY_MOVE(ProcessMath)

public:
    // Variables keep this many decimals, so that a value loses nothing on its way into
    // the lines below.
    static constexpr int kVariableDecimals = 16;

    static QString markTag() { return QStringLiteral("math"); }
    static QString calculatedFieldHighlight() { return QStringLiteral("calculatedFieldHighlight"); }
    static QString definedVariableHighlight() { return QStringLiteral("definedVariableHighlight"); }
    static QString usedVariableHighlight() { return QStringLiteral("usedVariableHighlight"); }
    static QString duplicateVariablesMessage() { return QStringLiteral("Variables cannot be defined multiple times"); }

    using DefaultAttributes = std::function<TextAttributes()>;

    // `preferences` gives the decimals and grouping of results (two decimals with
    // grouping when there are none); `defaultAttributes` the look of plain text, which a
    // mark gives back when it goes; `conversion` may be null, and then no line converts.
    ProcessMath(const MathPreferences *preferences, NotificationBus &bus, DefaultAttributes defaultAttributes,
                const ConversionService *conversion = nullptr);

    MathManager &mathManager() { return m_mathManager; }
    const MathManager &mathManager() const { return m_mathManager; }
    void setConversionService(const ConversionService *conversion) { m_conversion = conversion; }

    // Recalculates the note in `storage` after `edit`, then shows or withdraws the pill
    // about variables defined twice: shown as a "MessagePillNotification" of type error
    // with "persistent" set, withdrawn with a "DismissMessagePillNotification" that
    // carries the pill's unchanging first words as its "message".
    void processAllMath(TextStorage &storage, const MathEdit &edit);

    // The lines whose marks the last pass rewrote, other than the edited line, as they
    // stand after it. The styling laid over math (markdown) is laid there again, so a
    // keystroke leaves the note looking as a full pass would.
    const std::vector<TextRange> &restyledLines() const { return m_restyledLines; }

    // One line of the note, whose text starts at `lineStart` in the storage. Returns
    // the length of the line's text afterwards.
    qsizetype processMathLine(int lineIndex, const QString &lineText, int lineNumber, TextStorage &storage,
                              qsizetype lineStart);

private:
    struct Mark {
        TextRange range; // within the line
        QString subtag;
        QString color;
    };
    struct Settings {
        int decimals = 2;
        bool useThousandSeparators = true;
        TextAttributes defaults;
    };
    // What a line's expression, its variables put in, comes to: the text behind its "=",
    // and for a definition the value to store.
    struct Outcome {
        QString result;
        QString storedValue;
    };

    qsizetype processLineInBatch(int lineIndex, const QString &lineText, TextStorage &storage, qsizetype lineStart);
    std::optional<double> evaluate(const QString &expression) const;
    QString variableValueText(double value, const QString &symbol) const;
    std::optional<QString> substitutionFor(const QString &key, int lineNumber);
    Outcome work(const QString &substituted, bool isDefinition) const;
    void keepOrForgetOutcomes(bool wholeNote, std::size_t lineCount);
    std::vector<Mark> marksFor(const QString &line, int lineNumber) const;
    // Returns whether any run changed.
    bool layMarks(TextStorage &storage, qsizetype lineStart, qsizetype lineLength, const std::vector<Mark> &marks);
    void noteRestyled(int lineIndex, bool restyled);
    void postDuplicatesPill() const;

    const MathPreferences *m_preferences;
    NotificationBus &m_bus;
    DefaultAttributes m_defaultAttributes;
    const ConversionService *m_conversion;
    MathManager m_mathManager;
    Settings m_settings;
    // What each variable's value reads as where it is used, for the pass under way.
    QHash<QString, QString> m_substitutions;
    std::vector<TextRange> m_restyledLines;
    // Per line of the pass under way: whether its marks were rewritten.
    std::vector<bool> m_lineRestyled;
    // Outcomes by expression, of calculations (0) and of definitions (1). A keystroke
    // changes one line; the others come to what they came to before, which is looked up
    // instead of worked out again. Kept from one keystroke to the next, and dropped by
    // each full pass: one follows every change of settings, locale or currency rates.
    QHash<QString, Outcome> m_outcomes[2];
    QString m_outcomesLocale;
    int m_outcomesDecimals = -1;
    bool m_outcomesGrouping = true;
};

} // namespace scrivlet
