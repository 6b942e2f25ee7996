#pragma once

class QLineEdit;

/// From now on the field selects its whole text whenever it gets the focus, by key, by click or with its
/// window when that opens; not when the user comes back to a half-typed text from another window or a context
/// menu.
void SelectAllOnFocus(QLineEdit* field);
