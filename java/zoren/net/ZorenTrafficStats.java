package zoren.net;

/**
 * Traffic totals of one network interface and one uid, from the kernel's per-uid accounting in
 * {@code /proc/net/xt_qtaguid/stats}.
 *
 * <p>Each call reads the whole file and adds up the untagged lines of that interface and uid over
 * all counter sets; nothing is kept, and any number of threads may call. The interface name must
 * match whole and in its case; names of more than 31 characters match nothing. A pair that the file
 * does not list has a total of 0.
 *
 * <p>A total is an unsigned 64-bit number in a {@code long}; {@link Long#toUnsignedString(long)}
 * prints it. −1 means that the file could not be read.
 *
 * <p>Every call throws {@link NullPointerException} when {@code iface} is null.
 */
public final class ZorenTrafficStats {
    private static final int RX_BYTES = 0;
    private static final int RX_PACKETS = 1;
    private static final int TX_BYTES = 2;
    private static final int TX_PACKETS = 3;

    static {
        System.loadLibrary("zoren_runtime");
    }

    private ZorenTrafficStats() {}

    /**
     * Returns the bytes received.
     *
     * @param iface the interface name, such as {@code wlan0}
     * @param uid the uid, its 32 bits taken as unsigned
     * @return the total, or −1 when the statistics cannot be read
     */
    public static long getRxBytes(String iface, int uid) {
        return nativeGetIfaceUidStat(iface, uid, RX_BYTES);
    }

    /**
     * Returns the packets received.
     *
     * @param iface the interface name, such as {@code wlan0}
     * @param uid the uid, its 32 bits taken as unsigned
     * @return the total, or −1 when the statistics cannot be read
     */
    public static long getRxPackets(String iface, int uid) {
        return nativeGetIfaceUidStat(iface, uid, RX_PACKETS);
    }

    /**
     * Returns the bytes transmitted.
     *
     * @param iface the interface name, such as {@code wlan0}
     * @param uid the uid, its 32 bits taken as unsigned
     * @return the total, or −1 when the statistics cannot be read
     */
    public static long getTxBytes(String iface, int uid) {
        return nativeGetIfaceUidStat(iface, uid, TX_BYTES);
    }

    /**
     * Returns the packets transmitted.
     *
     * @param iface the interface name, such as {@code wlan0}
     * @param uid the uid, its 32 bits taken as unsigned
     * @return the total, or −1 when the statistics cannot be read
     */
    public static long getTxPackets(String iface, int uid) {
        return nativeGetIfaceUidStat(iface, uid, TX_PACKETS);
    }

    private static native long nativeGetIfaceUidStat(String iface, int uid, int counter);
}
