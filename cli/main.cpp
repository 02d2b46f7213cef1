// scrivlet-cli: Scrivlet's note engine without a window.

#include "CliOptions.h"
#include "ConversionSetup.h"
#include "ConvertCommand.h"
#include "DataDirCommand.h"
#include "EvalCommand.h"

#include "calculation/NumberLocale.h"

#include "editor/EditorPasses.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/PreferencesCatalogue.h"
#include "shell/preferences/VisualPreferences.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>

#include <cstdio>

using namespace scrivlet;

namespace {

constexpr int kExitBadInput = 2;

int fail(const QString &message)
{
    std::fprintf(stderr, "scrivlet-cli: %s\n", qPrintable(message));
    return kExitBadInput;
}

// What the engine made of a note, for scripts: its text, the rows of its checklist and
// its short links.
QByteArray processedNoteJson(const QString &text, const Note &note)
{
    QJsonArray checklist;
    if (note.checklistManager) {
        for (const auto &item : note.checklistManager->checklist) {
            checklist.append(QJsonObject{{QStringLiteral("content"), item->content},
                                         {QStringLiteral("checked"), item->checked},
                                         {QStringLiteral("hidden"), item->isHidden}});
        }
    }
    QJsonArray scrivlinks;
    if (note.scrivlinkManager) {
        for (const Scrivlink &link : note.scrivlinkManager->scrivlinks) {
            scrivlinks.append(QJsonObject{{QStringLiteral("fullUrl"), link.fullUrl},
                                          {QStringLiteral("shortenedUrl"), link.shortenedUrl}});
        }
    }
    const QJsonObject object{{QStringLiteral("text"), text},
                             {QStringLiteral("checklist"), checklist},
                             {QStringLiteral("scrivlinks"), scrivlinks}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

// One note through the engine: the text goes into a fresh editor as when the note is
// opened in the app, and what the engine made of it comes out.
int process(const cli::CliOptions &options)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read standard input"));
    const QByteArray bytes = input.readAll();
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return fail(QStringLiteral("standard input is not valid UTF-8 text"));

    // A run starts from the defaults, whatever the user's own settings say, so the
    // output depends on the input and the options alone.
    MemorySettingsStore settings;
    for (const auto &[key, value] : options.settings)
        PreferencesCatalogue::setFromText(settings, key, value);
    NotificationBus bus;
    ManualClock clock;
    KeywordPreferences keywordPreferences(settings, &bus);
    KeywordDefinitionsContainer keywords(keywordPreferences);
    VisualPreferences visualPreferences(settings);
    MiscPreferences miscPreferences(settings);
    MathPreferences mathPreferences(settings);
    // No rate update runs here: currencies convert with the table given by --rates.
    cli::ConversionSetup conversion(settings, clock, bus);
    if (const auto problem = conversion.loadRates(options.ratesFile))
        return fail(*problem);
    const EditorContext context{keywords, visualPreferences, miscPreferences,
                                bus,      clock,             &mathPreferences, &conversion.converter()};

    Note note;
    note.id = QUuid::createUuid();
    note.created = note.lastModified = clock.now();
    note.content = text;
    NoteViewModel viewModel(note);
    AttributedText storage;
    NoteEditorSession session(storage, viewModel, context, [](const Note &) {});
    EditorPasses passes(session, context);
    session.open();

    const QByteArray out = options.json ? processedNoteJson(storage.string(), viewModel.note()) : storage.string().toUtf8();
    if (std::fwrite(out.constData(), 1, size_t(out.size()), stdout) != size_t(out.size()) || std::fflush(stdout) != 0)
        return fail(QStringLiteral("cannot write standard output"));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("scrivlet-cli"));

    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const auto parsed = cli::parseCommandLine(arguments);
    if (const auto *error = std::get_if<cli::CliError>(&parsed)) {
        fail(error->message);
        std::fputs("Try 'scrivlet-cli --help'.\n", stderr);
        return kExitBadInput;
    }
    const auto &options = std::get<cli::CliOptions>(parsed);
    if (options.help) {
        std::fputs(qPrintable(cli::usageText()), stdout);
        return 0;
    }
    if (!options.locale.isEmpty())
        NumberLocale::setCurrent(*NumberLocale::fromName(options.locale));
    if (options.verb == u"eval")
        return cli::EvalCommand::run(options, stdout, stderr);
    if (options.verb == u"convert")
        return cli::ConvertCommand::run(options, stdout, stderr);
    if (cli::isDataVerb(options.verb))
        return cli::DataDirCommand(options, stdin, stdout, stderr).run();
    return process(options);
}
