package zoren.cli;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** The pictures that the words of a command name: files, a pipe, and what lies in folders. */
final class Inputs {
    /** One picture, or why it cannot be read. */
    static final class Input {
        final Path path;
        final Path name; // below the folder that was named
        final Source source;
        final Failure failure;

        private Input(Path path, Path name, Source source, Failure failure) {
            this.path = path;
            this.name = name;
            this.source = source;
            this.failure = failure;
        }
    }

    final List<Input> list = new ArrayList<>();
    private final Map<String, Integer> skipped = new TreeMap<>(); // how many, by the reason
    private final boolean recursive;
    private final Path leftOut;

    private Inputs(boolean recursive, Path leftOut) {
        this.recursive = recursive;
        this.leftOut = leftOut;
    }

    /** Finds the pictures, those of a folder by name; nothing of the folder {@code leftOut}. */
    static Inputs of(List<Path> paths, boolean recursive, Path leftOut) throws Failure {
        final Inputs inputs = new Inputs(recursive, leftOut);
        for (final Path path : paths) {
            final int before = inputs.list.size();
            if (!Files.isDirectory(path)) {
                inputs.add(path, path.getFileName(), false);
                continue;
            }
            inputs.addFolder(path, path);
            if (inputs.list.size() == before) {
                if (paths.size() == 1) {
                    throw new Failure(path, "holds no picture" + inputs.reasons());
                }
                inputs.fail(path, new Failure(path, "holds no picture"));
            }
        }
        return inputs;
    }

    /** Returns what tells the files that are read from all others. */
    Set<Object> fileKeys() {
        return list.stream()
                .filter(input -> input.source != null)
                .map(input -> input.source.fileKey)
                .collect(Collectors.toSet());
    }

    /** Tells whether something in a folder was passed over. */
    boolean skippedSome() {
        return !skipped.isEmpty();
    }

    /** Returns the line that closes the work on several pictures. */
    String summary(String done, int failed) {
        return list.size() - failed + " " + done
                + (failed > 0 ? ", " + failed + " failed" : "")
                + reasons();
    }

    private String reasons() {
        final int count = skipped.values().stream().mapToInt(Integer::intValue).sum();
        return count == 0
                ? ""
                : ", " + count + " skipped ("
                        + skipped.entrySet().stream()
                                .map(each -> each.getValue() + " " + each.getKey())
                                .collect(Collectors.joining(", "))
                        + ")";
    }

    private void addFolder(Path top, Path folder) {
        List<Path> entries = List.of();
        try (Stream<Path> all = Files.list(folder)) {
            entries = all.sorted().collect(Collectors.toList());
        } catch (IOException | UncheckedIOException e) { // the latter after some entries
            final Throwable cause = e instanceof IOException ? e : e.getCause();
            final String reason = new Failure(folder, (IOException) cause).getMessage();
            fail(folder, new Failure("cannot list " + reason));
        }
        for (final Path entry : entries) {
            if (Files.isRegularFile(entry)) {
                add(entry, top.relativize(entry), true);
            } else if (!Files.isDirectory(entry)) {
                skip("not a regular file");
            } else if (!recursive) {
                skip("in folders, see --recursive");
            } else if (Files.isSymbolicLink(entry)) { // may lead back
                skip("a link to a folder");
            } else if (!isLeftOut(entry)) {
                addFolder(top, entry);
            }
        }
    }

    private void add(Path path, Path name, boolean listed) {
        try {
            list.add(new Input(path, name, Source.of(path), null));
        } catch (Failure e) {
            if (listed && e instanceof Source.NoPicture && Format.ofName(path) == null) {
                skip("not pictures");
            } else {
                fail(path, e);
            }
        }
    }

    private void fail(Path path, Failure failure) {
        list.add(new Input(path, null, null, failure));
    }

    private boolean isLeftOut(Path folder) {
        try {
            return leftOut != null && Files.isSameFile(folder, leftOut);
        } catch (IOException e) {
            return false; // one of them is not there
        }
    }

    private void skip(String reason) {
        skipped.merge(reason, 1, Integer::sum);
    }
}
