#include "TqDeclareClass.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <typeinfo>

#include "Objects.h"
#include "Reports.h"
#include "TqClassInfo.h"
#include "TqClassRegistry.h"

// Classes of an application, as one writes them: an abstract one under the root, and below it as
// many levels as it takes.

class ChassisPart : public TqBaseObject {
    TQ_DECLARE_CLASS(ChassisPart)
public:
    virtual int Slot() const = 0;
};

class ChassisPort : public ChassisPart {
    TQ_DECLARE_CLASS(ChassisPort)
public:
    int Slot() const override { return 1; }
};

class ChassisEthernetPort : public ChassisPort {
    TQ_DECLARE_CLASS(ChassisEthernetPort)
};

class ChassisGigabitPort : public ChassisEthernetPort {
    TQ_DECLARE_CLASS(ChassisGigabitPort)
public:
    int Slot() const override { return 4; }
};

class ChassisFan : public ChassisPart {
    TQ_DECLARE_CLASS(ChassisFan)
    // Private: only the factory makes fans.
    ChassisFan() {}

public:
    int Slot() const override { return 9; }
};

TQ_IMPLEMENT_ABSTRACT_CLASS(ChassisPart, TqBaseObject)
TQ_IMPLEMENT_CLASS(ChassisPort, ChassisPart)
TQ_IMPLEMENT_CLASS(ChassisEthernetPort, ChassisPort)
TQ_IMPLEMENT_CLASS(ChassisGigabitPort, ChassisEthernetPort)
TQ_IMPLEMENT_CLASS(ChassisFan, ChassisPart)

namespace plant {
namespace sensors {

class Sensor : public TqBaseObject {
    TQ_DECLARE_CLASS(Sensor)
};

class Thermometer : public Sensor {
    TQ_DECLARE_CLASS(Thermometer)
};

TQ_IMPLEMENT_CLASS(Sensor, TqBaseObject)
TQ_IMPLEMENT_CLASS(Thermometer, Sensor)

}  // namespace sensors

// A parent of another namespace, brought into scope.
using sensors::Thermometer;

class OvenThermometer : public Thermometer {
    TQ_DECLARE_CLASS(OvenThermometer)
};

TQ_IMPLEMENT_CLASS(OvenThermometer, Thermometer)

}  // namespace plant

namespace {

// Read before any test has run.
TqClassInfo* const infosAtLoad[] = {
    ChassisPart::ChassisPartInfo, ChassisPort::ChassisPortInfo, plant::sensors::Sensor::SensorInfo,
    plant::OvenThermometer::OvenThermometerInfo, TqBaseObject::TqBaseObjectInfo};

static_assert(std::is_same<decltype(ChassisPort::ChassisPortInfo), TqClassInfo*>::value, "");
static_assert(std::is_same<decltype(&ChassisPort::ChassisPortInitInfo), TqClassInfo* (*)()>::value,
              "");
static_assert(
    std::is_same<decltype(&ChassisPort::ClassInfo), TqClassInfo* (ChassisPort::*)() const>::value,
    "");
static_assert(std::is_same<decltype(&ChassisPort::NewInstance),
                           TqBaseObject* (ChassisPort::*)() const>::value,
              "");
static_assert(std::is_same<decltype(&ChassisPortNewFunc), TqBaseObject* (*)()>::value, "");

template <class T>
void ExpectDescribed(TqClassInfo* info, const char* name, TqClassInfo* parent) {
    ASSERT_NE(info, nullptr);
    EXPECT_STREQ(info->name.data, name);
    EXPECT_EQ(info->parent, parent);
    const std::unique_ptr<TqBaseObject> object(info->NewObject());
    ASSERT_NE(object, nullptr);
    const TqBaseObject& made = *object;
    EXPECT_TRUE(typeid(made) == typeid(T));
    EXPECT_EQ(object->ClassInfo(), info);
    EXPECT_EQ(object->refCount, 0);
}

TEST(TqDeclareClass, DescriptorsAreNullUntilFirstNeeded) {
    for (const TqClassInfo* info : infosAtLoad) EXPECT_EQ(info, nullptr);
}

TEST(TqDeclareClass, InitInfoBuildsTheDescriptorOnce) {
    TqClassInfo* info = ChassisPort::ChassisPortInitInfo();
    EXPECT_EQ(ChassisPort::ChassisPortInfo, info);
    EXPECT_EQ(ChassisPort::ChassisPortInitInfo(), info);
    EXPECT_EQ(ChassisPort::ChassisPortInfo, info);
}

TEST(TqDeclareClass, InitInfoBuildsTheParentsFirst) {
    TqClassInfo* info = plant::OvenThermometer::OvenThermometerInitInfo();
    ASSERT_NE(info->parent, nullptr);
    EXPECT_EQ(info->parent, plant::Thermometer::ThermometerInfo);
    ASSERT_NE(info->parent->parent, nullptr);
    EXPECT_EQ(info->parent->parent, plant::sensors::Sensor::SensorInfo);
    EXPECT_EQ(info->parent->parent->parent, TqBaseObject::TqBaseObjectInfo);
    EXPECT_EQ(info->parent->parent->parent->parent, nullptr);
}

TEST(TqDeclareClass, ClassesHaveTheirNamesParentsAndFactories) {
    ExpectDescribed<ChassisPort>(ChassisPort::ChassisPortInitInfo(), "ChassisPort",
                                 ChassisPart::ChassisPartInitInfo());
    ExpectDescribed<ChassisEthernetPort>(ChassisEthernetPort::ChassisEthernetPortInitInfo(),
                                         "ChassisEthernetPort", ChassisPort::ChassisPortInitInfo());
    ExpectDescribed<ChassisGigabitPort>(ChassisGigabitPort::ChassisGigabitPortInitInfo(),
                                        "ChassisGigabitPort",
                                        ChassisEthernetPort::ChassisEthernetPortInitInfo());
    ExpectDescribed<ChassisFan>(ChassisFan::ChassisFanInitInfo(), "ChassisFan",
                                ChassisPart::ChassisPartInitInfo());
}

TEST(TqDeclareClass, ClassesOfANamespaceHaveTheirPlainNames) {
    ExpectDescribed<plant::sensors::Sensor>(plant::sensors::Sensor::SensorInitInfo(), "Sensor",
                                            TqBaseObject::TqBaseObjectInitInfo());
    ExpectDescribed<plant::Thermometer>(plant::Thermometer::ThermometerInitInfo(), "Thermometer",
                                        plant::sensors::Sensor::SensorInitInfo());
    ExpectDescribed<plant::OvenThermometer>(plant::OvenThermometer::OvenThermometerInitInfo(),
                                            "OvenThermometer",
                                            plant::Thermometer::ThermometerInitInfo());
}

TEST(TqDeclareClass, AnAbstractClassHasADescriptorAndIsNotMade) {
    const TqClassInfo* info = ChassisPart::ChassisPartInitInfo();
    EXPECT_STREQ(info->name.data, "ChassisPart");
    EXPECT_EQ(info->parent, TqBaseObject::TqBaseObjectInitInfo());
    EXPECT_EQ(info->createFunc, &ChassisPartNewFunc);
    EXPECT_EQ(info->NewObject(), nullptr);
    EXPECT_EQ(ChassisPartNewFunc(), nullptr);
    const ChassisPort port;
    EXPECT_EQ(port.ChassisPart::NewInstance(), nullptr);
}

TEST(TqDeclareClass, ClassInfoIsVirtual) {
    const ChassisGigabitPort port;
    const TqBaseObject& object = port;
    EXPECT_EQ(object.ClassInfo(), ChassisGigabitPort::ChassisGigabitPortInitInfo());
}

namespace lateness {

class Late : public TqBaseObject {
    TQ_DECLARE_CLASS(Late)
};

TQ_IMPLEMENT_CLASS(Late, TqBaseObject)

}  // namespace lateness

TEST(TqDeclareClass, ClassInfoBuildsTheDescriptorOnTheFirstCall) {
    const lateness::Late object;
    EXPECT_EQ(lateness::Late::LateInfo, nullptr);
    TqClassInfo* info = object.ClassInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(lateness::Late::LateInfo, info);
    EXPECT_EQ(object.ClassInfo(), info);
    EXPECT_EQ(lateness::Late::LateInitInfo(), info);
    EXPECT_STREQ(info->name.data, "Late");
    delete info;
    lateness::Late::LateInfo = nullptr;
}

TEST(TqDeclareClass, FactoryAndNewInstanceMakeTheSameKindOfObject) {
    const ChassisEthernetPort port;
    const std::unique_ptr<TqBaseObject> made(ChassisEthernetPortNewFunc());
    const std::unique_ptr<TqBaseObject> instance(port.NewInstance());
    const TqBaseObject &first = *made, &second = *instance;
    EXPECT_TRUE(typeid(first) == typeid(ChassisEthernetPort));
    EXPECT_TRUE(typeid(second) == typeid(ChassisEthernetPort));
    EXPECT_NE(made, instance);
    EXPECT_EQ(made->refCount, 0);
    EXPECT_EQ(instance->refCount, 0);
}

TEST(TqDeclareClass, NewInstanceIsNotVirtual) {
    const ChassisGigabitPort port;
    const ChassisPort& base = port;
    const std::unique_ptr<TqBaseObject> made(base.NewInstance());
    const TqBaseObject& object = *made;
    EXPECT_TRUE(typeid(object) == typeid(ChassisPort));
}

TEST(TqDeclareClass, TheFactoryOfAClassMayBeItsOnlyMaker) {
    static_assert(!std::is_default_constructible<ChassisFan>::value, "");
    const std::unique_ptr<TqBaseObject> fan(ChassisFanNewFunc());
    EXPECT_EQ(static_cast<ChassisFan*>(fan.get())->Slot(), 9);
}

TEST(TqDeclareClass, ObjectsAreAKindOfEachOfTheirClasses) {
    const ChassisGigabitPort port;
    EXPECT_EQ(port.IsA(ChassisGigabitPort::ChassisGigabitPortInitInfo()), 1);
    EXPECT_EQ(port.IsA(ChassisEthernetPort::ChassisEthernetPortInitInfo()), 1);
    EXPECT_EQ(port.IsA(ChassisPort::ChassisPortInitInfo()), 1);
    EXPECT_EQ(port.IsA(ChassisPart::ChassisPartInitInfo()), 1);
    EXPECT_EQ(port.IsA(TqBaseObject::TqBaseObjectInitInfo()), 1);
    EXPECT_EQ(port.IsA(ChassisFan::ChassisFanInitInfo()), 0);
    EXPECT_EQ(port.IsA(plant::sensors::Sensor::SensorInitInfo()), 0);
    EXPECT_EQ(ChassisEthernetPort().IsA(ChassisGigabitPort::ChassisGigabitPortInitInfo()), 0);
}

TEST(TqDeclareClass, ObjectsAreAKindOfTheirRegisteredClassesByName) {
    const Registered port(ChassisPort::ChassisPortInitInfo());
    const Registered part(ChassisPart::ChassisPartInitInfo());
    const ChassisGigabitPort object;
    EXPECT_EQ(object.IsA("ChassisPort"), 1);
    EXPECT_EQ(object.IsA("ChassisPart"), 1);
    EXPECT_EQ(object.IsA("ChassisGigabitPort"), 0) << "not registered";
    const std::unique_ptr<TqBaseObject> fan(ChassisFanNewFunc());
    EXPECT_EQ(fan->IsA("ChassisPort"), 0);
    EXPECT_EQ(fan->IsA("ChassisPart"), 1);
}

TEST(TqDeclareClass, AClassThatIsRegisteredAgainKeepsItsPlace) {
    const TqRefList<TqClassInfo>& list = TqClassRegistry::GetRegistry()->classList;
    TqRegisterClass<ChassisFan>();
    TqRegisterClass<ChassisPort>();
    const unsigned int count = list.count;
    const unsigned int place = list.FindSlot(ChassisFan::ChassisFanInfo);
    EXPECT_GT(place, 0u);
    TqRegisterClass<ChassisFan>();
    EXPECT_EQ(list.count, count);
    EXPECT_EQ(list.FindSlot(ChassisFan::ChassisFanInfo), place);
}

TEST(TqDeclareClass, ObjectsAreMadeByName) {
    const Registered part(ChassisPart::ChassisPartInitInfo());
    const Registered port(ChassisGigabitPort::ChassisGigabitPortInitInfo());
    const TqClassRegistry* registry = TqClassRegistry::GetRegistry();
    const std::unique_ptr<TqBaseObject> object(registry->NewObject("ChassisGigabitPort"));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(static_cast<ChassisPart*>(object.get())->Slot(), 4);
    EXPECT_EQ(registry->NewObject("ChassisPart"), nullptr);
}

TEST(TqDeclareClass, AClassWithoutADescriptorOfItsOwnReportsItsParents) {
    class Plain : public ChassisEthernetPort {};
    const Plain object;
    EXPECT_EQ(object.ClassInfo(), ChassisEthernetPort::ChassisEthernetPortInitInfo());
    const std::unique_ptr<TqBaseObject> made(object.NewInstance());
    const TqBaseObject& instance = *made;
    EXPECT_TRUE(typeid(instance) == typeid(ChassisEthernetPort));
}

}  // namespace
