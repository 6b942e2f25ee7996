#pragma once

#include "app/frmQIRAN.h"
#include "foundation/settings/clsIni.h"
#include "pesim/EngineSimulator.h"
#include "support/RecordingNotices.h"
#include "support/RecordingPresenter.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRandomGenerator>
#include <QTableView>

/// A window of the program that is in sight; null when there is none of this name.
inline QWidget* WindowNamed(const QString& name) {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == name && window->isVisible())
            return window;
    return nullptr;
}

/// The true main window in a temporary program folder, a simulated packet engine beside it, and a recorder in
/// the user's place at message boxes.
class MainWindowRig {
public:
    MainWindowRig() {
        folder.Write(QStringLiteral("formula.txt"), "A,0,CURRENT,X+,0,0,1.5,-20\r\nA,2,TEMP,X+,0,0,1,0\r\n"
                                                    "B,2,TEMP,X-,0,0,2,0.5\r\n");
        // A free port that the settings can hold: they end at 32767.
        while (!engine.Listen(static_cast<quint16>(QRandomGenerator::global()->bounded(10000, 32768))))
            ;
        Set("AGWPE", "HOST_PORT", QString::number(engine.Port()));
        Set("AGWPE", "HOST_ADDRESS", QStringLiteral("127.0.0.1"));
    }

    void Set(const char* section, const char* key, const QString& value) const {
        clsIni(folder.IniFile()).SaveIniString(QLatin1StringView(section), QLatin1StringView(key), value);
    }

    /// The stored value; "absent" when the file has no such key.
    QString Get(const char* section, const char* key) const {
        return clsIni(folder.IniFile())
            .GetIniString(QLatin1StringView(section), QLatin1StringView(key), QStringLiteral("absent"));
    }

    void MakeWindow() { window = std::make_unique<frmQIRAN>(folder.Program(), clock, messages, notices); }

    bool Start() {
        MakeWindow();
        return window->Load();
    }

    template <class Type>
    Type* Find(const char* name) const {
        return window->findChild<Type*>(QLatin1StringView(name));
    }

    QString Monitor() const { return Find<QPlainTextEdit>("txtMon")->toPlainText(); }

    /// The text shown in a grid's cell; row from 1, columns as in the grid.
    QString Cell(const char* grid, int row, int column) const {
        return Find<QTableView>(grid)->model()->index(row - 1, column).data().toString();
    }

    TemporaryProgramFolder folder;
    TestClock clock;
    RecordingPresenter presenter;
    mb messages{presenter};
    RecordingNotices notices;
    EngineSimulator engine;
    std::unique_ptr<frmQIRAN> window;
};
