#include "FailurePicture.h"

#include <QGenericPlugin>

/// "vekfailurepicture:PATH" in QT_QPA_GENERIC_PLUGINS gives a host this feature.
class FailurePicturePlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "FailurePicture.json")

public:
    QObject* create(const QString& name, const QString& path) override
    {
        const bool ours =
            name.compare(QLatin1String("vekfailurepicture"), Qt::CaseInsensitive) == 0;
        return ours && !path.isEmpty() ? new FailurePicture(path) : nullptr;
    }
};

#include "Plugin.moc"
