// asse ("Assembler"), the workbench: the source editor RText1 around the
// assembler of the core, its colour listing RText2, the label list, the
// opcode help panel that follows the cursor, the calculator, the file panel
// with the picture importers, and the run buttons. What the assembler keeps
// lives in Machine::forms.asse; the widgets show it and feed it.
#pragma once

#include <QWidget>
#include <array>
#include <string>

#include "asm/PicImport.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QMenuBar;
class QPlainTextEdit;
class QPushButton;
class QScrollBar;
class QTextEdit;
class QTimer;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class TScreen;

class asse : public QWidget {
    Q_OBJECT
  public:
    explicit asse(TScreen& screen);

    // Selects "0x" and Hex4(RegPC) in the listing; the CPU monitor's Step calls it.
    void Dline(const std::string& text);

    void Command1_Click();       // Compile
    void Command2_Click();       // Clear
    void Command3_Click();       // Del TABS
    void Command4_Click();       // Ucase
    void Command5_Click();       // Lcase
    void Command6_Click();       // RUN
    void Command7_Click();       // RESET
    void Command8_Click();       // Disassemly
    void Command11_Click();      // Convert tvcasm
    void Command12_Click();      // STOP CPU
    void Command13_Click();      // RUN CPU
    void Command14_Click();      // OPEN / SAVE
    void Import(int32_t button); // Command9, 10, 16 to 20
    void xOpen_Click();
    void xSave_Click();
    void xEdit_Click();
    void xFormat_Click();
    void xHelp_Click();
    void Timer1_Timer();
    void List2_Click();
    void List2_DblClick();
    void List3_DblClick(QListWidgetItem* item);
    void RText2_DblClick();
    void Combo1_Click();
    void File1_Click(QListWidgetItem* item);
    void Text5_Enter();
    void Text6_Enter();
    // The folder File1 and Dir1 show.
    void SetFolder(const QString& path);
    QString Folder() const { return folder_; }

    QMenuBar* menu = nullptr;
    QTextEdit *RText1 = nullptr, *RText2 = nullptr;
    QPlainTextEdit *Text4 = nullptr, *Text9 = nullptr;
    QListWidget *List2 = nullptr, *List3 = nullptr;
    QLineEdit *Text8 = nullptr, *Text7 = nullptr, *Text10 = nullptr;
    QLabel* Text11 = nullptr; // the description, wrapped
    std::array<QLabel*, 6> Label7{};
    QLabel *Label1 = nullptr, *Label2 = nullptr;
    QLineEdit *Text13 = nullptr, *Text14 = nullptr, *Text15 = nullptr;
    QLineEdit *Text5 = nullptr, *Text6 = nullptr;
    QCheckBox *Check1 = nullptr, *Check2 = nullptr;
    std::array<QPushButton*, 21> Command{}; // Command1 to Command20 by number
    QGroupBox* Frame2 = nullptr;
    QComboBox *Drive1 = nullptr, *Combo1 = nullptr;
    QListWidget *Dir1 = nullptr, *File1 = nullptr;
    QLineEdit* Text16 = nullptr;
    QLabel* Image1 = nullptr;
    QScrollBar* HScroll1 = nullptr;
    QTimer* Timer1 = nullptr;
    PixelGrid ResPic; // the sample source: the picture at its own size

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QWidget* BuildEditor();
    QWidget* BuildSide();
    void BuildFilePanel();
    void ShowCompile();
    void SetEditorText(const std::string& utf8);
    std::string EditorText() const;
    void FileError();
    void RefreshFiles();

    TScreen& screen_;
    Machine& m_;
    QString folder_;
    QString pattern_;
};

} // namespace tvc::ui
