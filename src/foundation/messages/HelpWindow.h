#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <memory>
#include <utility>

class QLabel;
class QLineEdit;
class QPushButton;
class QTextBrowser;
class QSplitter;
class QTreeWidget;
class WindowSize;
class clsIni;

/// The help document with its contents, a way back, a search in the page and printing. The document is one
/// HTML file with its pictures inside ("data:" addresses); nothing else is loaded, from disk or network.
/// Links to the web open in the user's browser.
class HelpWindow : public QWidget {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget* parent = nullptr);
    ~HelpWindow() override;

    /// Reads the document; where that is not possible, the page says so. Keeps what it has when the file is
    /// the same and unchanged.
    void Load(const QString& file);

    /// The window keeps the size that the user gives it in these settings, which outlive it.
    void RememberSize(clsIni& ini);

    /// Shows the window, beside the one that is active, at the first of these topics that the document has,
    /// or at its beginning.
    void Open(const QStringList& topics);

    /// Whether the document has an anchor of this name.
    bool HasTopic(const QString& name) const { return m_topics.contains(name); }

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Place();
    void MarkPlace();
    void ReadTopics();
    void BuildContents();
    void GoTo(int position);
    void GoBack();
    void Follow(const QUrl& link);
    void Find(bool backward);
    void Print();

    std::unique_ptr<WindowSize> m_size; // none where nothing is remembered
    bool m_isOpened = false;
    QSplitter* m_panes = nullptr;
    QTreeWidget* m_contents;
    QTextBrowser* m_page;
    QLineEdit* m_find;
    QLabel* m_found;
    QPushButton* m_back;
    QString m_file;
    std::pair<qint64, qint64> m_stamp; // the file's time of change and size, to notice a new one
    QHash<QString, int> m_topics;      // anchors, and their positions in the document
    QList<int> m_trail;                // positions that the user has gone on from
};
