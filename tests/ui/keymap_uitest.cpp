// The key map: the physical places of the Hungarian layout, the symbolic
// fallback with the keypad apart, and releases that undo exactly what their
// presses did, whatever changed in between.
#include <QKeyEvent>
#include <QSignalSpy>
#include <QtTest>

#include <set>

#include "hw/Keyboard.h"
#include "support/TestMachine.h"
#include "ui/main/KeyMap.h"
#include "ui/main/ScreenView.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

QKeyEvent Key(QEvent::Type type, quint32 scan, int qtKey, Qt::KeyboardModifiers mods = {}) {
    return QKeyEvent(type, qtKey, mods, scan, 0, 0);
}

// The numeric keypad's X11 key codes: digits 0-9 and the point.
constexpr unsigned kKeypadPlaces[] = {90, 87, 88, 89, 83, 84, 85, 79, 80, 81, 91};

} // namespace

class KeyMapTest : public QObject {
    Q_OBJECT
  private slots:
    void everyMatrixKeyHasAPlaceAndEveryPlaceACode();
    void symbolicFallbackAndTheKeypad();
    void releaseUndoesItsPress();
    void focusLossForgetsHeldKeys();
};

// Every code with a matrix place is reached from one physical key, and every
// code the table gives has a place, is a command key, or is 0 (swallowed).
void KeyMapTest::everyMatrixKeyHasAPlaceAndEveryPlaceACode() {
    std::set<int> given;
    for (unsigned scan = 0; scan < 256; ++scan)
        if (const std::optional<int> vk = VirtualKeyFromScanCode(scan)) given.insert(*vk);
    const std::set<int> withoutPlace = {0,   9,   27,  36,  46, 112,
                                        113, 114, 115, 122, 123}; // Tab Esc Home Del F1-F4 F11 F12
    for (int vk = 0; vk < 256; ++vk) {
        const bool hasPlace = MatrixPosition(vk).has_value();
        if (hasPlace) QVERIFY2(given.count(vk), qPrintable(QString::number(vk)));
        if (given.count(vk))
            QVERIFY2(hasPlace || withoutPlace.count(vk), qPrintable(QString::number(vk)));
    }
}

// Without a known place the symbolic key decides; on the keypad only
// * + - / and Enter have a code: its digits and point, NumLock on or off
// (cursor keys), have none, with or without their place.
void KeyMapTest::symbolicFallbackAndTheKeypad() {
    const struct {
        int qtKey;
        bool keypad;
        int vk;
    } rows[] = {{Qt::Key_Q, false, 'Q'},    {Qt::Key_Minus, false, 189},
                {Qt::Key_Minus, true, 109}, {Qt::Key_Asterisk, true, 106},
                {Qt::Key_Enter, true, 13},  {Qt::Key_Launch0, false, 0}};
    for (const auto& r : rows)
        for (unsigned place : {0u, 250u}) {
            const auto mods = r.keypad ? Qt::KeypadModifier : Qt::NoModifier;
            QCOMPARE(VirtualKey(Key(QEvent::KeyPress, place, r.qtKey, mods)), r.vk);
        }
    const int numLockOff[] = {Qt::Key_Insert, Qt::Key_End,    Qt::Key_Down,  Qt::Key_PageDown,
                              Qt::Key_Left,   Qt::Key_Clear,  Qt::Key_Right, Qt::Key_Home,
                              Qt::Key_Up,     Qt::Key_PageUp, Qt::Key_Delete};
    for (int i = 0; i < 11; ++i)
        for (int key : {i < 10 ? Qt::Key_0 + i : Qt::Key_Period, numLockOff[i]})
            for (unsigned place : {kKeypadPlaces[i], 0u})
                QCOMPARE(VirtualKey(Key(QEvent::KeyPress, place, key, Qt::KeypadModifier)), 0);
}

// A release gives what the press gave, not what the key means now; of two
// keys with one code, only the last one up lets go of it.
void KeyMapTest::releaseUndoesItsPress() {
    HeldKeys held;
    QCOMPARE(held.Press(60, 190), 190);
    QCOMPARE(held.Press(60, 46), 190); // pressed again: keeps its code
    QCOMPARE(held.Release(60), 190);
    QCOMPARE(held.Release(60), 0);    // nothing left to undo
    QCOMPARE(held.Press(50, 16), 16); // both Shift keys
    QCOMPARE(held.Press(62, 16), 16);
    QCOMPARE(held.Release(50), 0);
    QCOMPARE(held.Release(62), 16);
    QVERIFY(held.Empty());
    // Through the event: the identity of a key with no scan code is its
    // symbolic key, keypad apart.
    QVERIFY(PhysicalKey(Key(QEvent::KeyPress, 0, Qt::Key_Minus)) !=
            PhysicalKey(Key(QEvent::KeyPress, 0, Qt::Key_Minus, Qt::KeypadModifier)));
    QCOMPARE(PhysicalKey(Key(QEvent::KeyPress, 91, Qt::Key_Period)),
             PhysicalKey(Key(QEvent::KeyRelease, 91, Qt::Key_Delete)));
}

void KeyMapTest::focusLossForgetsHeldKeys() {
    test::TestMachine tm;
    ScreenView view(tm.m());
    QSignalSpy downs(&view, &ScreenView::KeyDown), ups(&view, &ScreenView::KeyUp),
        all(&view, &ScreenView::AllKeysUp);
    auto send = [&](QEvent::Type t, quint32 scan, int key, Qt::KeyboardModifiers mods = {}) {
        QKeyEvent e = Key(t, scan, key, mods);
        QApplication::sendEvent(&view, &e);
    };
    send(QEvent::KeyPress, 60, Qt::Key_Period); // . with NumLock on...
    send(QEvent::KeyRelease, 60, Qt::Key_Greater, Qt::ShiftModifier);
    QCOMPARE(ups.size(), 1);
    QCOMPARE(ups[0][0].toInt(), downs[0][0].toInt());
    send(QEvent::KeyPress, 38, Qt::Key_A);
    QFocusEvent out(QEvent::FocusOut);
    QApplication::sendEvent(&view, &out);
    QCOMPARE(all.size(), 1);
    send(QEvent::KeyRelease, 38, Qt::Key_A); // its press was let go already
    QCOMPARE(ups.size(), 1);
    QVERIFY(view.Held().Empty());
}

QTEST_MAIN(KeyMapTest)
#include "keymap_uitest.moc"
