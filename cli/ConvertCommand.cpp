#include "ConvertCommand.h"

#include "CliOptions.h"
#include "ConversionSetup.h"

#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/PreferencesCatalogue.h"

namespace scrivlet::cli {

int ConvertCommand::run(const CliOptions &options, std::FILE *out, std::FILE *err)
{
    MemorySettingsStore settings;
    for (const auto &[key, value] : options.settings)
        PreferencesCatalogue::setFromText(settings, key, value);
    ManualClock clock;
    NotificationBus bus;
    ConversionSetup conversion(settings, clock, bus);
    if (const auto problem = conversion.loadRates(options.ratesFile)) {
        std::fprintf(err, "scrivlet-cli: %s\n", qPrintable(*problem));
        return kExitBadInput;
    }

    // A whole math line may be given: what stands before its "=" is the request.
    QString request = options.expression;
    if (const qsizetype equals = request.indexOf(u'='); equals >= 0)
        request.truncate(equals);
    const QString shown =
        conversion.converter().processConversion(request, MathPreferences(settings).numberOfDecimalPoints());
    const QByteArray line = shown.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), out);
    const bool converted = shown != u"N/A" && shown != u"Not a conversion request.";
    return converted ? 0 : kExitNoValue;
}

} // namespace scrivlet::cli
