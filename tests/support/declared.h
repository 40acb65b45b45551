#pragma once

#include <QMetaMethod>
#include <QStringList>

/// Signatures of a class's own signals or slots, in the order of their declaration: others connect
/// to them by name.
inline QStringList declared(const QMetaObject &meta, QMetaMethod::MethodType type)
{
    QStringList found;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        if (meta.method(i).methodType() == type)
            found << QString::fromLatin1(meta.method(i).methodSignature());
    return found;
}
