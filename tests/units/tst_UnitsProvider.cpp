// SPDX-License-Identifier: Apache-2.0
#include "videooverlay/units/UnitsProvider.h"

#include "videooverlay/units/AngleUnitsConverter.h"
#include "videooverlay/units/DateConverter.h"
#include "videooverlay/units/DistanceUnitsConverter.h"
#include "videooverlay/units/ElapsedTimeConverter.h"
#include "videooverlay/units/PressureUnitsConverter.h"
#include "videooverlay/units/SpeedUnitsConverter.h"
#include "videooverlay/units/TempUnitsConverter.h"
#include "videooverlay/units/TimeConverter.h"

#include "tests/support/LoggedTest.h"

#include <QtTest>

#include <cstdint>
#include <cstring>
#include <type_traits>

using namespace Velmar::VideoOverlay;

namespace {

/// The least that a host writes.
class PlainProvider : public UnitsProvider
{
public:
    QString convert(QVariant value, QString from, QString to) override
    {
        return value.toString() + from + to;
    }
};

// A pointer to a virtual member holds its offset in the table of virtual operations; on x86 its
// lowest bit is set.
template <typename MemberFunction> int slotOf(MemberFunction function)
{
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &function, sizeof(offset));
    return int((offset & ~std::uintptr_t(1)) / sizeof(void *));
}

template <typename Converter> void compareSlots()
{
    static_assert(std::is_base_of_v<UnitsProvider, Converter>);
    static_assert(std::has_virtual_destructor_v<Converter>);
    static_assert(std::is_same_v<decltype(&Converter::convert),
                                 QString (Converter::*)(QVariant, QString, QString)>);
    static_assert(std::is_same_v<decltype(&Converter::getSuffix), QString (Converter::*)(QString)>);
    QCOMPARE(slotOf(&Converter::convert), 2); // after the two destructors
    QCOMPARE(slotOf(&Converter::getSuffix), 3);
}

static_assert(std::is_abstract_v<UnitsProvider>);
static_assert(sizeof(UnitsProvider) == sizeof(void *));
static_assert(sizeof(SpeedUnitsConverter) == sizeof(void *));
static_assert(sizeof(DistanceUnitsConverter) == sizeof(void *));
static_assert(sizeof(ElapsedTimeConverter) == sizeof(void *));
static_assert(sizeof(AngleUnitsConverter) == 2 * sizeof(void *));
static_assert(sizeof(TempUnitsConverter) == 2 * sizeof(void *));
static_assert(sizeof(PressureUnitsConverter) == 2 * sizeof(void *));
static_assert(sizeof(TimeConverter) == sizeof(void *) + sizeof(QString));
static_assert(sizeof(DateConverter) == sizeof(void *) + sizeof(QString));

// decimals are always stated, and never taken for a converter
static_assert(!std::is_default_constructible_v<AngleUnitsConverter>);
static_assert(!std::is_default_constructible_v<TempUnitsConverter>);
static_assert(!std::is_default_constructible_v<PressureUnitsConverter>);
static_assert(!std::is_convertible_v<int, AngleUnitsConverter>);
static_assert(!std::is_convertible_v<int, TempUnitsConverter>);
static_assert(!std::is_convertible_v<int, PressureUnitsConverter>);
static_assert(!std::is_convertible_v<QString, DateConverter>);

} // namespace

class tst_UnitsProvider : public Velmar::Test::LoggedTest
{
    Q_OBJECT

private Q_SLOTS:
    void suffixIsTheUnit()
    {
        PlainProvider plain;
        UnitsProvider &provider = plain;
        QCOMPARE(provider.getSuffix(QStringLiteral("furlong")), QStringLiteral("furlong"));
        QCOMPARE(provider.getSuffix(QString()), QString());
        QCOMPARE(provider.convert(1, QStringLiteral("a"), QStringLiteral("b")),
                 QStringLiteral("1ab"));
    }

    void slotOrder()
    {
        QCOMPARE(slotOf(&UnitsProvider::convert), 2);
        QCOMPARE(slotOf(&UnitsProvider::getSuffix), 3);
        compareSlots<AngleUnitsConverter>();
        compareSlots<DateConverter>();
        compareSlots<DistanceUnitsConverter>();
        compareSlots<ElapsedTimeConverter>();
        compareSlots<PressureUnitsConverter>();
        compareSlots<SpeedUnitsConverter>();
        compareSlots<TempUnitsConverter>();
        compareSlots<TimeConverter>();
    }

    void destroyedThroughTheInterface()
    {
        // Under the address sanitizer a destructor that is not virtual is a failure here.
        const std::unique_ptr<UnitsProvider> provider(new DateConverter(QStringLiteral("text")));
        QVERIFY(provider);
    }
};

QTEST_GUILESS_MAIN(tst_UnitsProvider)
#include "tst_UnitsProvider.moc"
