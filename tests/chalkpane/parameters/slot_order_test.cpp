#include <doctest/doctest.h>

#include <cstddef>
#include <cstring>

#include "chalkpane/parameters/animation/animated_value.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/parameterised_object.h"
#include "chalkpane/parameters/string_value.h"
#include "chalkpane/parameters/text/text_scanner.h"
#include "chalkpane/parameters/undo_data.h"

// Where the compiler keeps the place of a virtual operation in a pointer to it.
#if defined(__x86_64__) && defined(__GNUC__)

namespace {

using namespace chalkpane;

// The place in the table of a class, which holds its destructor twice: behind a destructor that stands first, places
// are numbered as slots counted from 1.
template <typename Operation>
int PlaceOf(Operation operation) {
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof(operation) == sizeof(words));
    std::memcpy(words, &operation, sizeof(words));
    return static_cast<int>((words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
}

template <typename... Operations>
void CheckOrder(int first, Operations... operations) {
    int wanted = first;
    const auto check = [&wanted](int place) { CHECK_EQ(place, wanted++); };
    (check(PlaceOf(operations)), ...);
}

TEST_CASE("The 62 operations of a value stand in the order of their slots") {
    using V = ParameterValue;
    CheckOrder(2, &V::destroy, &V::getParameter, &V::setParent, &V::getParent, &V::reset, &V::isSetLocally,
               &V::clearSet);
    CheckOrder(9, &V::setGraph, &V::setString, &V::setRect, &V::setFont, &V::setDoubleXY, &V::setIntegerXY,
               &V::setColourSpline, &V::setColour, &V::setBoolean, &V::setFloat, &V::setDouble, &V::setInteger,
               &V::setEnumeration);
    CheckOrder(22, &V::getGraph, &V::getString, &V::getRect, &V::getFont, &V::getDoubleXY, &V::getIntegerXY,
               &V::getColourSpline, &V::getColour, &V::getBoolean, &V::getFloat, &V::getDouble, &V::getInteger,
               &V::getEnumeration, &V::getStoredDouble);
    CheckOrder(36, &V::isAnimated, &V::keyCount, &V::keyAt, &V::clearKeys, &V::retimeKeys, &V::resortKey,
               &V::removeCoincidentKeys, &V::appendText, &V::writeToStream, &V::readText, &V::markChanged,
               &V::isChanged);
    CheckOrder(48, &V::getCurveLocked, &V::setCurveLocked, &V::getCurveRange, &V::setCurveRange, &V::setCurveScale,
               &V::getCurveScale, &V::isEditable, &V::clearValue, &V::componentCount, &V::componentColour,
               &V::componentName, &V::normalisedValue, &V::normalisedKeyValue, &V::setNormalisedKeyValue,
               &V::isDiscrete);
}

TEST_CASE("The 21 operations of animated values follow those of all values") {
    using A = AnimatedValue;
    CheckOrder(63, &A::addKeyDoubleXY, &A::addKeyIntegerXY, &A::addKeyColour, &A::addKeyBoolean, &A::addKeyDouble);
    CheckOrder(68, &A::valueAtFrameDoubleXY, &A::valueAtFrameIntegerXY, &A::valueAtFrameColour, &A::valueAtFrameBoolean,
               &A::valueAtFrameDouble, &A::valueAtFrameInteger);
    CheckOrder(74, &A::appendKeyText, &A::writeKeyToStream, &A::readKey, &A::removeKey, &A::addKeyAtFrame, &A::clone,
               &A::copyKeysFrom, &A::appendValueText, &A::writeValueToStream, &A::readKeyValue);
    CHECK_EQ(PlaceOf(&A::readKeyValue), 83);
}

TEST_CASE("The operations of the other classes that a host may derive from stand in their order") {
    CheckOrder(2, &Key::frame, &Key::setTime, &Key::retime);
    CheckOrder(2, &AnimationClock::frameToTime, &AnimationClock::timeToFrame, &AnimationClock::currentFrame);
    CheckOrder(2, &UndoData::undo, &UndoData::redo);
    CheckOrder(2, &DataSet::removeValue, &DataSet::addValue, &DataSet::replaceValue);
    CheckOrder(2, &LayerProvider::indexOfName, &LayerProvider::nameOfIndex);
    CheckOrder(2, &CharacterFilter::pass);
    // These have no destructor in front.
    CheckOrder(0, &TextScanner::keywordCount, &TextScanner::keyword);
    CheckOrder(0, &ParameterisedObject::setParameter, &ParameterisedObject::valuesChanged);
}

}  // namespace

#endif
