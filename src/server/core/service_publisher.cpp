#include "server/core/service_publisher.h"

#include "store/log.h"

#include <mutex>

#ifdef TAVELLE_HAVE_AVAHI
#include <avahi-client/client.h>
#include <avahi-client/publish.h>
#include <avahi-common/alternative.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/strlst.h>
#include <avahi-common/thread-watch.h>
#endif

namespace server {

namespace {

void logPublished(const ServiceDescription &service, const QString &name)
{
    tl::logLine(QStringLiteral("Bonjour Service Published: domain(%1) type(%2) name(%3)")
                    .arg(service.domain, service.type, name));
}

void logFailed(const ServiceDescription &service, const QString &name, const QString &error)
{
    tl::logLine(QStringLiteral("Failed to Publish Service: domain(%1) type(%2) name(%3) - %4")
                    .arg(service.domain, service.type, name, error));
}

[[maybe_unused]] QByteArray withoutFinalDot(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    while (bytes.endsWith('.'))
        bytes.chop(1);
    return bytes;
}

#ifdef TAVELLE_HAVE_AVAHI

class AvahiPublisher : public ServicePublisher
{
public:
    ~AvahiPublisher() override { shutdown(); }

    void publish(const ServiceDescription &service) override
    {
        shutdown();
        m_service = service;
        m_poll = avahi_threaded_poll_new();
        if (!m_poll) {
            logFailed(service, service.name,
                      QStringLiteral("could not start the publication thread"));
            return;
        }
        int error = 0;
        m_client = avahi_client_new(avahi_threaded_poll_get(m_poll), AvahiClientFlags(0),
                                    &AvahiPublisher::clientChanged, this, &error);
        if (!m_client) {
            logFailed(service, service.name, QString::fromUtf8(avahi_strerror(error)));
            avahi_threaded_poll_free(m_poll);
            m_poll = nullptr;
            return;
        }
        avahi_threaded_poll_lock(m_poll);
        if (avahi_client_get_state(m_client) == AVAHI_CLIENT_S_RUNNING)
            createServices();
        avahi_threaded_poll_unlock(m_poll);
        avahi_threaded_poll_start(m_poll);
    }

    void unpublish() override { shutdown(); }

    QString publishedName() const override
    {
        std::lock_guard lock(m_nameMutex);
        return m_publishedName;
    }

private:
    void shutdown()
    {
        if (m_poll)
            avahi_threaded_poll_stop(m_poll);
        if (m_group) {
            avahi_entry_group_free(m_group);
            m_group = nullptr;
        }
        if (m_client) {
            avahi_client_free(m_client);
            m_client = nullptr;
        }
        if (m_poll) {
            avahi_threaded_poll_free(m_poll);
            m_poll = nullptr;
        }
        if (m_name) {
            avahi_free(m_name);
            m_name = nullptr;
        }
        std::lock_guard lock(m_nameMutex);
        m_publishedName.clear();
    }

    QString currentName() const { return m_name ? QString::fromUtf8(m_name) : m_service.name; }

    // Runs with the poll's lock held.
    void createServices()
    {
        if (!m_name) {
            const QByteArray wanted = m_service.name.isEmpty()
                                          ? QByteArray(avahi_client_get_host_name(m_client))
                                          : m_service.name.toUtf8();
            m_name = avahi_strdup(wanted.constData());
        }
        if (!m_group)
            m_group = avahi_entry_group_new(m_client, &AvahiPublisher::groupChanged, this);
        if (!m_group) {
            logFailed(m_service, currentName(),
                      QString::fromUtf8(avahi_strerror(avahi_client_errno(m_client))));
            return;
        }
        if (!avahi_entry_group_is_empty(m_group))
            return;
        AvahiStringList *txt = nullptr;
        for (auto it = m_service.txtRecord.cbegin(); it != m_service.txtRecord.cend(); ++it)
            txt = avahi_string_list_add_pair_arbitrary(
                txt, it.key().toUtf8().constData(),
                reinterpret_cast<const uint8_t *>(it.value().constData()),
                size_t(it.value().size()));
        const QByteArray type = withoutFinalDot(m_service.type);
        const QByteArray domain = withoutFinalDot(m_service.domain);
        int result = avahi_entry_group_add_service_strlst(
            m_group, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, AvahiPublishFlags(0), m_name,
            type.constData(), domain.isEmpty() ? nullptr : domain.constData(), nullptr,
            m_service.port, txt);
        avahi_string_list_free(txt);
        if (result == AVAHI_ERR_COLLISION) {
            renameAfterCollision();
            return;
        }
        if (result >= 0)
            result = avahi_entry_group_commit(m_group);
        if (result < 0)
            logFailed(m_service, currentName(), QString::fromUtf8(avahi_strerror(result)));
    }

    void renameAfterCollision()
    {
        char *next = avahi_alternative_service_name(m_name);
        avahi_free(m_name);
        m_name = next;
        avahi_entry_group_reset(m_group);
        createServices();
    }

    static void clientChanged(AvahiClient *client, AvahiClientState state, void *context)
    {
        auto *self = static_cast<AvahiPublisher *>(context);
        if (!self->m_client)
            self->m_client = client; // called from inside avahi_client_new
        switch (state) {
        case AVAHI_CLIENT_S_RUNNING:
            if (self->m_poll && self->m_group == nullptr && self->m_name)
                self->createServices();
            break;
        case AVAHI_CLIENT_FAILURE:
            logFailed(self->m_service, self->currentName(),
                      QString::fromUtf8(avahi_strerror(avahi_client_errno(client))));
            break;
        case AVAHI_CLIENT_S_COLLISION:
        case AVAHI_CLIENT_S_REGISTERING:
            if (self->m_group)
                avahi_entry_group_reset(self->m_group);
            break;
        default:
            break;
        }
    }

    static void groupChanged(AvahiEntryGroup *group, AvahiEntryGroupState state, void *context)
    {
        auto *self = static_cast<AvahiPublisher *>(context);
        switch (state) {
        case AVAHI_ENTRY_GROUP_ESTABLISHED: {
            {
                std::lock_guard lock(self->m_nameMutex);
                self->m_publishedName = self->currentName();
            }
            logPublished(self->m_service, self->currentName());
            break;
        }
        case AVAHI_ENTRY_GROUP_COLLISION:
            self->renameAfterCollision();
            break;
        case AVAHI_ENTRY_GROUP_FAILURE:
            logFailed(self->m_service, self->currentName(),
                      QString::fromUtf8(
                          avahi_strerror(avahi_client_errno(avahi_entry_group_get_client(group)))));
            break;
        default:
            break;
        }
    }

    ServiceDescription m_service;
    AvahiThreadedPoll *m_poll = nullptr;
    AvahiClient *m_client = nullptr;
    AvahiEntryGroup *m_group = nullptr;
    char *m_name = nullptr;
    mutable std::mutex m_nameMutex;
    QString m_publishedName;
};

#else

class AvahiPublisher : public ServicePublisher
{
public:
    void publish(const ServiceDescription &service) override
    {
        logFailed(service, service.name, QStringLiteral("built without Avahi"));
    }
    void unpublish() override {}
    QString publishedName() const override { return {}; }
};

#endif

} // namespace

std::unique_ptr<ServicePublisher> makeAvahiPublisher()
{
    return std::make_unique<AvahiPublisher>();
}

} // namespace server
