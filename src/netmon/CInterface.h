#pragma once

#include "basic/Checked.h"

#include <QString>

// One row of the interface table at one moment. Nothing but storage: the
// traffic window compares two of these property by property.
//
// Accessors stand in the order of the record's slots, each get followed by
// its set; the fields stand in exactly the reverse order. Unsigned system
// counters are kept bit for bit, so a value at or above 2^31 reads negative.
// Nothing is validated.
class CInterface {
public:
    using Long = basic::Long;
    using Date = double; // days since 30 December 1899, fraction = time of day

    QString InterfaceDescription() const { return mInterfaceDescription; }
    void setInterfaceDescription(const QString &value) { mInterfaceDescription = value; }
    Long OutputQueueLength() const { return mOutputQueueLength; }
    void setOutputQueueLength(const Long &value) { mOutputQueueLength = value; }
    Long OutgoingErrors() const { return mOutgoingErrors; }
    void setOutgoingErrors(const Long &value) { mOutgoingErrors = value; }
    Long DiscardedOutgoingPackets() const { return mDiscardedOutgoingPackets; }
    void setDiscardedOutgoingPackets(const Long &value) { mDiscardedOutgoingPackets = value; }
    Long NonunicastPacketsSent() const { return mNonunicastPacketsSent; }
    void setNonunicastPacketsSent(const Long &value) { mNonunicastPacketsSent = value; }
    Long UnicastPacketsSent() const { return mUnicastPacketsSent; }
    void setUnicastPacketsSent(const Long &value) { mUnicastPacketsSent = value; }
    Long OctetsSent() const { return mOctetsSent; }
    void setOctetsSent(const Long &value) { mOctetsSent = value; }
    Long UnknownProtocolPackets() const { return mUnknownProtocolPackets; }
    void setUnknownProtocolPackets(const Long &value) { mUnknownProtocolPackets = value; }
    Long IncomingErrors() const { return mIncomingErrors; }
    void setIncomingErrors(const Long &value) { mIncomingErrors = value; }
    Long DiscardedIncomingPackets() const { return mDiscardedIncomingPackets; }
    void setDiscardedIncomingPackets(const Long &value) { mDiscardedIncomingPackets = value; }
    Long NonunicastPacketsReceived() const { return mNonunicastPacketsReceived; }
    void setNonunicastPacketsReceived(const Long &value) { mNonunicastPacketsReceived = value; }
    Long MaximumTransmissionUnit() const { return mMaximumTransmissionUnit; }
    void setMaximumTransmissionUnit(const Long &value) { mMaximumTransmissionUnit = value; }
    Long UnicastPacketsReceived() const { return mUnicastPacketsReceived; }
    void setUnicastPacketsReceived(const Long &value) { mUnicastPacketsReceived = value; }
    Long OctetsReceived() const { return mOctetsReceived; }
    void setOctetsReceived(const Long &value) { mOctetsReceived = value; }
    Date LastChange() const { return mLastChange; }
    void setLastChange(const Date &value) { mLastChange = value; }
    Long OperationalStatus() const { return mOperationalStatus; }
    void setOperationalStatus(const Long &value) { mOperationalStatus = value; }
    Long AdminStatus() const { return mAdminStatus; }
    void setAdminStatus(const Long &value) { mAdminStatus = value; }
    QString AdapterAddress() const { return mAdapterAddress; }
    void setAdapterAddress(const QString &value) { mAdapterAddress = value; }
    Long Speed() const { return mSpeed; }
    void setSpeed(const Long &value) { mSpeed = value; }
    Long InterfaceType() const { return mInterfaceType; }
    void setInterfaceType(const Long &value) { mInterfaceType = value; }
    Long InterfaceIndex() const { return mInterfaceIndex; }
    void setInterfaceIndex(const Long &value) { mInterfaceIndex = value; }
    QString InterfaceName() const { return mInterfaceName; }
    void setInterfaceName(const QString &value) { mInterfaceName = value; }

private:
    QString mInterfaceName;
    Long mInterfaceIndex = 0;
    Long mInterfaceType = 0;
    Long mSpeed = 0;
    QString mAdapterAddress;
    Long mAdminStatus = 0;
    Long mOperationalStatus = 0;
    Date mLastChange = 0;
    Long mOctetsReceived = 0;
    Long mUnicastPacketsReceived = 0;
    Long mMaximumTransmissionUnit = 0;
    Long mNonunicastPacketsReceived = 0;
    Long mDiscardedIncomingPackets = 0;
    Long mIncomingErrors = 0;
    Long mUnknownProtocolPackets = 0;
    Long mOctetsSent = 0;
    Long mUnicastPacketsSent = 0;
    Long mNonunicastPacketsSent = 0;
    Long mDiscardedOutgoingPackets = 0;
    Long mOutgoingErrors = 0;
    Long mOutputQueueLength = 0;
    QString mInterfaceDescription;
};
