#include "QtSoapTypeFactory"

#include "SoapAccess_p.h"
#include "SoapReader_p.h"

#include <QMap>
#include <QMutex>
#include <QMutexLocker>

using namespace VEK_NAMESPACE;

struct QtSoapTypeConstructorBase::Data
{
    mutable QMutex mutex;
    QString error;
};

QtSoapTypeConstructorBase::QtSoapTypeConstructorBase()
    : m_data(new Data)
{}

QtSoapTypeConstructorBase::~QtSoapTypeConstructorBase() = default;

QString QtSoapTypeConstructorBase::errorString() const
{
    QMutexLocker lock(&m_data->mutex);
    return m_data->error;
}

void QtSoapTypeConstructorBase::setErrorString(const QString& error)
{
    QMutexLocker lock(&m_data->mutex);
    m_data->error = error;
}

struct QtSoapTypeFactory::Data
{
    mutable QMutex mutex;
    QMap<QtSoapQName, QtSoapTypeConstructorBase*> handlers;
};

QtSoapTypeFactory::QtSoapTypeFactory()
    : m_data(new Data)
{}

QtSoapTypeFactory::~QtSoapTypeFactory() = default;

QtSoapTypeFactory& QtSoapTypeFactory::instance()
{
    // Never deleted, nor are the handlers: their code may have been unloaded by then.
    static QtSoapTypeFactory* const factory = new QtSoapTypeFactory;
    return *factory;
}

bool QtSoapTypeFactory::registerHandler(const QtSoapQName& name, QtSoapTypeConstructorBase* handler)
{
    if (!handler)
        return false;

    QMutexLocker lock(&m_data->mutex);
    if (!name.name().isEmpty() && !m_data->handlers.contains(name)) {
        m_data->handlers.insert(name, handler);
        return true;
    }
    for (const QtSoapTypeConstructorBase* registered : qAsConst(m_data->handlers)) {
        if (registered == handler)
            return false;
    }
    delete handler;
    return false;
}

QtSoapType* QtSoapTypeFactory::soapType(const QDomNode& node) const
{
    return soap::readNode(node);
}

QtSoapTypeConstructorBase* QtSoapAccess::handler(const QtSoapQName& name)
{
    const QtSoapTypeFactory::Data& data = *QtSoapTypeFactory::instance().m_data;
    QMutexLocker lock(&data.mutex);
    return data.handlers.value(name);
}

bool QtSoapAccess::hasHandlers()
{
    const QtSoapTypeFactory::Data& data = *QtSoapTypeFactory::instance().m_data;
    QMutexLocker lock(&data.mutex);
    return !data.handlers.isEmpty();
}
