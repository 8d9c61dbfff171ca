#include "ui/panels/T8910.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

#include "core/Machine.h"

namespace tvc::ui {

T8910::T8910(Machine& m, QWidget* owner) : ChipPanel(m, owner, Scope::Ay) {
    setObjectName("T8910");
    setWindowTitle("AY-3-8910");
    auto* outer = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    const char* captions[5] = {"TONE 1", "TONE 2", "TONE 3", "NOISE", "ENVELOPE"};
    for (int n = 0; n < 5; ++n) {
        auto* f = new QGroupBox(captions[n], this);
        auto* v = new QVBoxLayout(f);
        v->addWidget(Pic1[n]);
        QLabel* l = Caption("", f);
        l->setObjectName(QString("Label1_%1").arg(n));
        v->addWidget(l);
        if (n < 3) Label1[n] = l;
        if (n == 4) Label2 = l;
        grid->addWidget(f, n / 2, n % 2);
    }
    outer->addLayout(grid);
    outer->addWidget(Caption("General Instrument's AY-3-8910 (1978): three square waves, one\n"
                             "noise and one envelope generator, the sound of many home computers.",
                             this));
}

void T8910::Labels() {
    const T8910Controls& t = m_.forms.T8910;
    for (int c = 0; c < 3; ++c)
        Label1[c]->setText(QString("Freq: %1 Hz  Period: %2\nAmp: %3  Mix: %4  Shape: %5")
                               .arg(t.Freq[c])
                               .arg(t.Period[c])
                               .arg(t.Amp[c])
                               .arg(t.Mix[c])
                               .arg(t.Shape));
    Label2->setText(QString("Shape: %1  Freq: %2 Hz").arg(t.Shape).arg(t.EnvFreq));
}

} // namespace tvc::ui
