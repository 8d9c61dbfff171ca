// The tape deck: its buttons, file list, counter and reels, and the main
// window's dialog reaching the real loaders.
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QtTest>

#include "UiHost.h"
#include "ui/media/TTape.h"

namespace tvc::test {

class TTapeTest : public QObject {
    Q_OBJECT
  private slots:
    void ButtonsCounterAndReels() {
        TestMachine t;
        std::vector<uint8_t> wav(44 + 10, 255);
        wav[43] = 30;
        t.dir->Write("Deck.wav", wav);
        ui::TTape deck(t.m(), nullptr, nullptr);
        deck.Timer1->stop();
        deck.Command9->click();
        QCOMPARE(deck.File1->count(), 1);
        deck.File1DblClick(deck.File1->item(0));
        QCOMPARE(deck.Label3->text(), QString("deck.wav"));
        QCOMPARE(TapeSample(t.m()), 1);

        struct Row {
            QPushButton* button;
            int speed;
            bool rewinds;
        };
        const Row rows[] = {
            {deck.Command1, -40, true}, {deck.Command2, 10, false}, {deck.Command3, 40, true}};
        for (const Row& r : rows) {
            deck.Label1->setText("7");
            r.button->click();
            QCOMPARE(deck.Speed, r.speed);
            QCOMPARE(deck.Label1->text(), QString(r.rewinds ? "0" : "7"));
        }
        // Speed 40: the angle steps by 4 (motor off) and wraps past 5.
        deck.Angle = 0;
        t.m().bus.PortLatch[5] = 0;
        deck.Timer1Tick();
        QCOMPARE(deck.Angle, 4.0);
        deck.Timer1Tick();
        QCOMPARE(deck.Angle, 3.0);
        // Motor on: the counter rises, Label5 = Label1 div 50.
        t.m().bus.PortLatch[5] = 0x40;
        deck.Label1->setText("149");
        deck.Timer1Tick();
        QCOMPARE(deck.Label1->text(), QString("150"));
        QCOMPARE(deck.Label5->text(), QString("3"));
        QCOMPARE(deck.Angle, 2.2);
    }
};

} // namespace tvc::test

QTEST_MAIN(tvc::test::TTapeTest)
#include "ttape_uitest.moc"
