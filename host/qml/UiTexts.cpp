// SPDX-License-Identifier: Apache-2.0
#include "host/qml/UiTexts.h"

#include "platform/translation/CTranslator.h"

namespace Velmar::Host {

using Translation::CTranslator;

namespace {

const QString fallbackCode = QStringLiteral("ENG");

} // namespace

QString UiTexts::context()
{
    return QStringLiteral("Velmar.Xqosd.Screens");
}

QStringList UiTexts::names()
{
    static const QStringList list
        = QStringLiteral(
              "add addFavorite addPicture addText addTextTitle analogVideo "
              "backgroundColor cancel catalog chooseElement choosePicture clone "
              "cloneTitle colorValue create current deleteElement discard distance editor "
              "elements enabled errorNoCatalog errorNoFolder errorNoKeyboard errorNoPicture "
              "errorNoPictureFile errorNotDone errorNotRenamed errorNotSaved "
              "errorProfileUnreadable errorProfilesLocked errorProjectName errorReadOnly "
              "errorRecording errorVideo "
              "favorites finishing "
              "folderUp imperial "
              "inspection kindFreeText kindInspectionStaticText kindInspectionText "
              "kindPicture kindStaticText kindSystemText kx70 kx70Column kx70Row "
              "language live metric mixed modified name newObservation newProject "
              "noElements noInspection noPicture noPictures noPreview noProjects "
              "noWarnings observation ok opacity openFirst osd overlay overwriteChanged "
              "overwriteDamaged overwriteTitle position "
              "profiles project projectName properties readOnly record recorded recordedToEnd "
              "recordedUntil recording redo remark remove removeText removeTitle rename "
              "renameTitle revert revertText revertTitle save saveAs saveAsTitle saved scale "
              "search searchCode sectionName select settings showCaption speed stop "
              "store text textColor timeout timeoutOff transparency undo unit units "
              "unsavedText unsavedTitle warningClipped warningOutside warningOverlap")
              .split(QLatin1Char(' '));
    return list;
}

UiTexts::UiTexts(QObject *parent)
    : QQmlPropertyMap(this, parent)
{
    CTranslator::instance()->updateTranslationForGivenKeys(fallbackCode, names());
    connect(CTranslator::instance(), &CTranslator::currentLocaleChanged, this, &UiTexts::translate);
    translate();
}

UiTexts::~UiTexts() = default;

QString UiTexts::text(const QString &name) const
{
    return value(name).toString();
}

void UiTexts::translate()
{
    const CTranslator *translator = CTranslator::instance();
    const QStringList all = names();
    for (const QString &name : all) {
        const QString english
            = translator->translate(context() + CTranslator::TXT_PART + name, name, fallbackCode);
        insert(name, translator->txt(context(), name, english, {}));
    }
}

} // namespace Velmar::Host
