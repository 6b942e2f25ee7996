#pragma once

#include <QApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QMessageBox>
#include <QStringList>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <functional>
#include <memory>

/// A person who has nothing but a keyboard, and sits at it in a thread of their own: a dialog that waits for
/// an answer does not keep them from giving it. Every key goes to what has the focus then.
class KeyboardUser {
public:
    /// Lets the person do all this; answers what they could not go on with, empty when they came to the end.
    static QString Run(const std::function<void(KeyboardUser&)>& steps) {
        QString trouble;
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            KeyboardUser user;
            try {
                steps(user);
            } catch (const Stuck& stuck) {
                trouble = stuck.why + user.Place();
                user.LeaveAll();
            }
        }));
        QObject::connect(thread.get(), &QThread::finished, qApp, [] {}); // wakes the loop
        thread->start();
        while (!thread->isFinished())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return trouble;
    }

    /// Asks the program's thread, once it has taken the last key.
    template <class Question>
    auto Ask(Question question) const {
        decltype(question()) answer{};
        QMetaObject::invokeMethod(qApp, question, Qt::BlockingQueuedConnection, &answer);
        return answer;
    }

    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        Send([key, modifiers] { QTest::keyClick(Target(), key, modifiers); });
    }

    void Type(const QString& text) const {
        Send([text] {
            for (const QChar character : text)
                QTest::keyClick(Target(), character.toLatin1());
        });
    }

    /// Types in place of what stands in a field.
    void Replace(const QString& text) const {
        Press(Qt::Key_A, Qt::ControlModifier);
        Press(Qt::Key_Delete);
        Type(text);
    }

    void WaitUntil(const QString& what, const std::function<bool()>& is) const {
        const QDeadlineTimer patience(20'000);
        while (!Ask([&is] { return is(); })) {
            if (patience.hasExpired())
                throw Stuck{QStringLiteral("waited in vain: ") + what};
            QThread::msleep(5);
        }
    }

    /// Waits until a window of this name has the keyboard. When the one before it has closed it is given to
    /// it, as a window manager does; here is none.
    void See(const QString& window) const {
        WaitUntil(QStringLiteral("window ") + window, [&window] {
            const QWidget* popup = QApplication::activePopupWidget();
            const QWidget* here = popup != nullptr ? popup : QApplication::activeWindow();
            if (here == nullptr)
                Activate(window);
            return here != nullptr && here->objectName() == window;
        });
    }

    void SeeFocus(const QString& control) const {
        WaitUntil(QStringLiteral("focus on ") + control, [&control] {
            return QApplication::focusWidget() != nullptr &&
                   QApplication::focusWidget()->objectName() == control;
        });
    }

    /// Presses Tab until the control has the focus.
    void TabTo(const QString& control, Qt::Key key = Qt::Key_Tab) const {
        const QStringList passed = Walk(key, control);
        if (passed.last() != control)
            throw Stuck{
                QStringLiteral("Tab does not come to %1, only to %2").arg(control, passed.join(u' '))};
    }

    /// Tab goes through every control of the window that has the keyboard and comes back to where it began,
    /// and Shift and Tab go the same way back. Answers the names on the way.
    QStringList GoRound() const {
        const QStringList there = Round(Qt::Key_Tab);
        QStringList back = Round(Qt::Key_Backtab);
        std::reverse(back.begin() + 1, back.end());
        if (there != back)
            throw Stuck{QStringLiteral("Tab goes %1, and back %2").arg(there.join(u' '), back.join(u' '))};
        const QStringList missed = Ask([&there] {
            QStringList names;
            for (const QWidget* widget : QApplication::activeWindow()->findChildren<QWidget*>())
                if (IsForKeys(*widget) && !there.contains(widget->objectName()))
                    names +=
                        widget->objectName() + u'/' + QLatin1StringView(widget->metaObject()->className());
            return names;
        });
        if (!missed.isEmpty())
            throw Stuck{QStringLiteral("Tab leaves out ") + missed.join(u' ')};
        return there;
    }

    /// What the desktop's keys for it do: brings another window forward.
    void SwitchTo(const QString& window) const {
        (void)Ask([&window] {
            Activate(window);
            return true;
        });
        See(window);
    }

private:
    struct Stuck {
        QString why;
    };
    static constexpr int mostTabs = 60;

    static void Activate(const QString& window) {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == window && widget->isVisible())
                widget->activateWindow();
    }

    static QWidget* Target() {
        if (QWidget* popup = QApplication::activePopupWidget())
            return popup->focusWidget() != nullptr ? popup->focusWidget() : popup;
        return QApplication::focusWidget() != nullptr ? QApplication::focusWidget()
                                                      : QApplication::activeWindow();
    }

    static bool IsForKeys(const QWidget& widget) {
        return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) != 0 &&
               widget.focusProxy() == nullptr && widget.window() == QApplication::activeWindow() &&
               !(qobject_cast<QWidget*>(widget.parent()) != nullptr &&
                 static_cast<QWidget*>(widget.parent())->focusProxy() == &widget);
    }

    // Does it in the program's thread, without waiting for its end: a dialog may open.
    void Send(const std::function<void()>& act) const {
        QMetaObject::invokeMethod(
            qApp,
            [act] {
                if (Target() != nullptr)
                    act();
            },
            Qt::QueuedConnection);
        (void)Ask([] { return true; });
    }

    static QString Focus() {
        return QApplication::focusWidget() != nullptr ? QApplication::focusWidget()->objectName() : QString();
    }

    // Presses the key until this control has the focus, or until it is back where it began: the names on the
    // way.
    QStringList Walk(Qt::Key key, const QString& end) const {
        const auto passed = std::make_shared<QStringList>();
        const auto isDone = std::make_shared<bool>(false);
        Send([=] {
            if (Focus().isEmpty())
                QTest::keyClick(Target(), key);
            passed->append(Focus());
            while (passed->last() != end && passed->size() < mostTabs) {
                QTest::keyClick(Target(), key);
                if (Focus() == passed->first())
                    break;
                passed->append(Focus());
            }
            *isDone = true;
        });
        WaitUntil(QStringLiteral("the end of the way by Tab"), [=] { return *isDone; });
        return Ask([=] { return *passed; });
    }

    QStringList Round(Qt::Key key) const {
        QStringList passed = Walk(key, {});
        if (passed.size() == mostTabs)
            throw Stuck{QStringLiteral("Tab does not come round: ") + passed.join(u' ')};
        return passed;
    }

    // So that the loops of what stands open end.
    void LeaveAll() const {
        for (int tries = 0; tries < 100 && Ask([] {
                                if (QWidget* popup = QApplication::activePopupWidget())
                                    popup->close();
                                auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                                if (dialog != nullptr)
                                    dialog->done(QDialog::Rejected);
                                return QApplication::activeModalWidget() != nullptr;
                            });
             ++tries)
            QThread::msleep(5);
    }

    // Where the person sits when nothing goes on.
    QString Place() const {
        return Ask([] {
            const auto name = [](const QWidget* widget) {
                return widget == nullptr ? QStringLiteral("none") : widget->objectName();
            };
            const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            return QStringLiteral(" [window %1, focus %2, menu %3, message %4]")
                .arg(name(QApplication::activeWindow()), name(QApplication::focusWidget()),
                     name(QApplication::activePopupWidget()), box == nullptr ? QString() : box->text());
        });
    }
};
