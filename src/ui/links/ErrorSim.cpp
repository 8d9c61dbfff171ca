#include "ui/links/ErrorSim.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QRadioButton>
#include <QVBoxLayout>

#include "core/Machine.h"

namespace tvc::ui {

ErrorSim::ErrorSim(Machine& m, QWidget* owner) : QWidget(owner, Qt::Window), m_(m) {
    setObjectName("ErrorSim");
    setWindowTitle("Error simulation");
    auto* layout = new QHBoxLayout(this);

    Frame1 = new QGroupBox("Video RAM", this);
    Frame1->setObjectName("Frame1");
    auto* video = new QGridLayout(Frame1);
    Check1 = new QCheckBox("Enabled", Frame1);
    Check1->setObjectName("Check1");
    Check1->setChecked(m_.bus.VideoErrorEnabled != 0);
    video->addWidget(Check1, 0, 0, 1, 2);
    for (int i = 0; i < 8; ++i) {
        CH0[i] = new QCheckBox(QString("%1 bit").arg(i), Frame1);
        CH0[i]->setObjectName(QString("CH0_%1").arg(i));
        CH0[i]->setChecked(m_.forms.ErrorSim.ErrorBits & (1 << i));
        video->addWidget(CH0[i], 1 + i, 0);
        connect(CH0[i], &QCheckBox::clicked, this, [this, i] { CH0_Click(i); });
    }
    auto* options = new QButtonGroup(this);
    const char* captions[3] = {"bit=0", "bit=1", "bit=Random"};
    for (int i = 0; i < 3; ++i) {
        Option1[i] = new QRadioButton(captions[i], Frame1);
        Option1[i]->setObjectName(QString("Option1_%1").arg(i));
        Option1[i]->setChecked(m_.forms.ErrorSim.Option1 == i);
        options->addButton(Option1[i], i);
        video->addWidget(Option1[i], 1 + i, 1);
    }
    connect(options, &QButtonGroup::idClicked, this,
            [this](int id) { m_.forms.ErrorSim.Option1 = id; });
    connect(Check1, &QCheckBox::clicked, this, &ErrorSim::Check1_Click);

    Frame2 = new QGroupBox("Sytem RAM", this);
    Frame2->setObjectName("Frame2");
    auto* system = new QVBoxLayout(Frame2);
    const struct {
        QCheckBox** box;
        const char* name;
        const char* caption;
        bool ErrorSimControls::*field;
    } banks[4] = {{&Check2, "Check2", "0000-3FFF", &ErrorSimControls::Check2},
                  {&Check3, "Check3", "4000-7FFF", &ErrorSimControls::Check3},
                  {&Check4, "Check4", "8000-BFFF", &ErrorSimControls::Check4},
                  {&Check5, "Check5", "C000-FFFF", &ErrorSimControls::Check5}};
    for (const auto& b : banks) {
        *b.box = new QCheckBox(b.caption, Frame2);
        (*b.box)->setObjectName(b.name);
        (*b.box)->setChecked(m_.forms.ErrorSim.*b.field);
        system->addWidget(*b.box);
        connect(*b.box, &QCheckBox::toggled, this,
                [this, field = b.field](bool on) { m_.forms.ErrorSim.*field = on; });
    }
    system->addStretch(1);
    layout->addWidget(Frame1);
    layout->addWidget(Frame2);
}

void ErrorSim::CH0_Click(int) {
    uint8_t bits = 0;
    for (int i = 0; i < 8; ++i)
        if (CH0[i]->isChecked()) bits |= static_cast<uint8_t>(1 << i);
    m_.forms.ErrorSim.ErrorBits = bits;
}

void ErrorSim::Check1_Click() {
    m_.bus.VideoErrorEnabled = Check1->isChecked() ? 1 : 0;
}

} // namespace tvc::ui
