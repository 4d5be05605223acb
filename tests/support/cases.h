// Tests whose cases are lines "GIVEN | GIVEN -> EXPECTED" of a text file.
#pragma once

#include <QtTest>

using Given = QList<QByteArray>;

/// The cases under [name] in the file: each gives `count` parts, of which `outcome` makes what is
/// compared with what the case expects.
struct Section {
    const char* name;
    int count;
    QString (*outcome)(const Given& given);
};

QString text(const QByteArray& utf8);

/// The parts of a list, trimmed.
Given parts(const QByteArray& list, char separator);

/// Has a test function for all cases of a file. Every section of the file must be known, and every
/// known one must have cases; what is wrong with the file is fatal.
class CaseTest : public QObject
{
    Q_OBJECT
public:
    CaseTest(const char* fileName, const QVector<Section>& sections);
private slots:
    void cases_data();
    void cases();

private:
    const char* m_fileName;
    QVector<Section> m_sections;
};

/// The main function of a test that has nothing but cases.
int runCases(int argc, char** argv, const char* fileName, const QVector<Section>& sections);
