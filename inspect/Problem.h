#pragma once

#include "inspect/ProblemCodes.h"

#include <QString>

namespace inspect
{

/// Where a problem is. 0 and an empty name stand for "no such place".
struct Place {
    QString file;
    qint64 line = 0;   ///< from 1
    qint64 column = 0; ///< from 1: in a table the number of the column, in an image the character
};

/// A problem that was found.
struct Problem {
    Code code;
    QString message; ///< what is wrong here
    Place place;
    QString uploader; ///< in place of the code's own text, when not empty
    QString remedy;   ///< in place of the code's own text, when not empty

    Severity severity() const { return kind_of(code).severity; }

    QString effect() const
    {
        return uploader.isEmpty() ? QString::fromLatin1(kind_of(code).uploader) : uploader;
    }

    QString advice() const
    {
        return remedy.isEmpty() ? QString::fromLatin1(kind_of(code).remedy) : remedy;
    }
};

} // namespace inspect
