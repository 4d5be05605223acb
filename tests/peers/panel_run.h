// One run of the panel program that ends by itself.
#pragma once

#include <QMap>
#include <QStringList>

struct PanelRun {
    int status = -1;               ///< -1: it crashed, or did not end
    QMap<QString, QString> values; ///< the last value of each tag as JSON; "-" when it is not good
    QByteArray said;               ///< all it wrote
};

/// Runs the panel once with these lines as tag file and these values of --write.
PanelRun runPanel(const QStringList& link, const QList<QByteArray>& tags,
                  const QList<QByteArray>& writes);

/// The values as "name=value", separated by blanks.
QString valuesText(const PanelRun& run);
