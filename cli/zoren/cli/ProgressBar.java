package zoren.cli;

import java.io.PrintWriter;

/** A progress bar on standard error, drawn only where the launcher saw a terminal there. */
final class ProgressBar {
    private static final int WIDTH = 30;

    private final PrintWriter err;
    private final int total;
    private final boolean visible = Boolean.getBoolean("zoren.terminal");
    private int done;

    ProgressBar(PrintWriter err, int total) {
        this.err = err;
        this.total = total;
    }

    void show() {
        if (visible) {
            final int filled = (int) ((long) WIDTH * done / total);
            err.print("\r[" + "#".repeat(filled) + ".".repeat(WIDTH - filled) + "] ");
            err.print(done + "/" + total);
            err.flush();
        }
    }

    void advance() {
        ++done;
        show();
    }

    /** Clears the line, so that another message can take it. */
    void clear() {
        if (visible) {
            err.print("\r\033[K");
            err.flush();
        }
    }
}
