// SPDX-License-Identifier: Apache-2.0
// Whatever bytes a file of translations holds: reading ends; what is refused has a reason and
// changes nothing; and what is read belongs to a language and a locale.
#include "fuzz/ScratchFile.h"
#include "host/platform/TranslationFile.h"
#include "platform/translation/CTranslator.h"

#include <QLocale>

using namespace Velmar::Translation;

namespace {

void checkRead(const TranslationFile &file)
{
    require(!file.language.isEmpty() && !file.locale.isEmpty());
    require(!QLocale(file.locale).name().isEmpty());
    for (auto text = file.texts.cbegin(); text != file.texts.cend(); ++text)
        require(text.key().contains(CTranslator::TXT_PART) && !text.value().isNull());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static ScratchFile scratch;
    scratch.fill(data, size);
    TranslationFile file;
    file.language = QStringLiteral("before");
    QString error;
    if (file.load(scratch.path(), &error)) {
        checkRead(file);
        return 0;
    }
    require(!error.isEmpty());
    require(file.language == QLatin1String("before") && file.path.isEmpty() && file.locale.isEmpty()
            && file.texts.isEmpty());
    return 0;
}
