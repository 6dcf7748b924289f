package android.util;

/** Opens the framework's configuration, which lies encrypted on the system partition. */
public final class ZorenConfig {
    static {
        System.loadLibrary("zoren_runtime");
    }

    private ZorenConfig() {}

    /**
     * Reads and decrypts {@code /system/etc/jpsp} and returns its XML text. Every call reads the
     * file anew; any number of threads may call.
     *
     * <p>Only a process of uid 0 is served. The text is not parsed or checked: a file sealed under
     * another key gives other characters, or null. Each refusal is logged under the tag
     * {@code zorenconfig}.
     *
     * @return the text, or null when the caller is not uid 0, or the file is missing, unreadable or
     *     not whole cipher blocks of at most 16 MiB
     * @throws OutOfMemoryError if the virtual machine cannot hold the string
     */
    public static String getConfigXML() {
        return nativeGetConfigXML();
    }

    private static native String nativeGetConfigXML();
}
