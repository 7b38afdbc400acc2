#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace test
{

/// A folder with the trees in which a system shows its devices and processes.
class FakeSystem
{
public:
    /// With nothing in it but empty folders.
    FakeSystem();

    /// Adds what the system shows of an FTDI adapter.
    void add_adapter(const QString& name) const;
    /// Adds a port of the machine itself, with a driver on the kernel's layer for serial ports.
    void add_built_in_port(const QString& name, const char* type) const;
    void add_process(int id, const char* name) const;

    void put(const QString& path, const QByteArray& content) const;
    void link(const QString& path, const QString& target) const;

    QString path(const QString& name) const { return m_folder.filePath(name); }

    /// The options that name the trees.
    QStringList roots() const;

private:
    QTemporaryDir m_folder;
};

} // namespace test
