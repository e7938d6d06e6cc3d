# SPDX-License-Identifier: Apache-2.0
# Where the lines of a source come from: the map of lines that the program writes beside
# the code file, in words for the user, and the map of what a filter script made of it.
#
# The form of both is told in docs/formats.md. A map that cannot be understood, or is of
# another source, is as good as none: places are then told by lines alone.

package MrayLines;

use strict;
use warnings;

use constant { HEAD => '#source lines 1', LARGEST => 64 << 20 };

my $here = __FILE__ =~ m{^(.*)/}s ? $1 : '.';
$here = "./$here" unless $here =~ m{^\.{0,2}/|^\.\.?\z};
require "$here/MrayShader.pm";

my $number = qr/\d{1,9}/;

# The map in a file, of a source of so many lines. It is read when it is asked first;
# $say is then given a line about a map that is of no use.
sub new {
	my ($class, $path, $count, $say) = @_;
	return bless { path => $path, count => $count, say => $say }, $class;
}

# The place of a line, counted from 1, as words; empty where nobody knows it.
sub place {
	my ($self, $line) = @_;
	my ($run, $past) = $self->find($line);
	return '' if !$run;
	my $box = $self->{boxes}[$run->{box}];
	my $title = $box ? "box $box->[1]_$box->[0]" : '';
	return one_line("$title, button $run->{button}") if defined $run->{button} && !defined $run->{clause};
	return one_line("$title, output $run->{button}") if defined $run->{button};
	my $file = $self->{files}[$run->{file}] // '';
	my $library = MrayShader::library();
	substr($file, 0, length "$library/") = '' if index($file, "$library/") == 0;
	$file .= ' line ' . ($run->{line} + $past) if $run->{line};
	return one_line(join ', ', grep { $_ ne '' } $title, $box ? "operator $box->[1]" : '', $file);
}

# Whether there is anything to be told.
sub is_known {
	my ($self) = @_;
	$self->read_once;
	return scalar @{ $self->{runs} };
}

# The map of what was made of the source, as text. Each origin is that of a line: a line
# of the source, a reference to a file and a line of it, or nothing.
sub of_made {
	my ($self, @origins) = @_;
	$self->read_once;
	my @files = @{ $self->{files} }[1 .. $#{ $self->{files} }];
	my %numbers = map { $files[$_] => $_ + 1 } 0 .. $#files;
	my (@runs, $last);
	for my $at (0 .. $#origins) {
		my $origin = $origins[$at];
		next if !defined $origin || $origin eq '';
		my %run = (first => $at + 1, count => 1, box => 0, file => 0, line => 0);
		if (ref $origin) {
			my ($file, $line) = @$origin;
			push @files, $file if !$numbers{$file};
			@run{qw(clause file line)} = ('global-open', $numbers{$file} //= @files, $line);
		} else {
			my ($found, $past) = $self->find($origin);
			next if !$found;
			@run{qw(box clause file button)} = @$found{qw(box clause file button)};
			$run{line} = $found->{line} + $past if $found->{line};
		}
		if ($last && goes_on($last, \%run)) {
			$last->{count}++;
		} else {
			push @runs, $last = \%run;
		}
	}
	my @boxes = @{ $self->{boxes} };
	return join '', map { "$_\n" } HEAD, map({ "box @$_" } @boxes[1 .. $#boxes]), map({ "file $_" } @files),
		map { as_line($_) } @runs;
}

sub goes_on {
	my ($last, $next) = @_;
	return 0 if defined $last->{button} || defined $next->{button};
	return $last->{first} + $last->{count} == $next->{first} && $last->{box} == $next->{box}
		&& $last->{clause} eq $next->{clause} && $last->{file} == $next->{file}
		&& ($next->{line} ? $last->{line} && $last->{line} + $last->{count} == $next->{line} : !$last->{line});
}

sub as_line {
	my ($run) = @_;
	return "line @$run{qw(first count box clause file line)}" if !defined $run->{button};
	return "output @$run{qw(first box clause button)}" if defined $run->{clause};
	return "argument @$run{qw(first count box button)}";
}

# ---------------------------------------------------------------- the file

# The run that holds a line, and how far the line is behind its first one.
sub find {
	my ($self, $line) = @_;
	$self->read_once;
	my $runs = $self->{runs};
	my ($from, $to) = (0, scalar @$runs);
	while ($from < $to) {
		my $middle = ($from + $to) >> 1;
		if ($runs->[$middle]{first} <= $line) { $from = $middle + 1 } else { $to = $middle }
	}
	my $run = $from ? $runs->[$from - 1] : undef;
	return if !$run || $line >= $run->{first} + $run->{count};
	return ($run, $line - $run->{first});
}

sub read_once {
	my ($self) = @_;
	return if $self->{runs};
	my $why = $self->read_file;
	return if $why eq '';
	@$self{qw(boxes files runs)} = ([undef], [undef], []);
	$self->{say}->("warning: $self->{path}: $why, so boxes cannot be named") if $why ne 'none';
}

# Gives why it is of no use; "none" if there is none, which is nothing to talk about.
sub read_file {
	my ($self) = @_;
	@$self{qw(boxes files runs)} = ([undef], [undef], []);
	open my $in, '<:raw', $self->{path} or return $!{ENOENT} ? 'none' : "$!";
	return 'it is no file' if !-f $in;
	return 'it is larger than ' . (LARGEST >> 20) . ' MB' if -s _ > LARGEST;
	my ($at, $last, $lines) = (0, 0, 0);
	while (defined(my $line = <$in>)) {
		chomp $line;
		$at++;
		if ($at == 1) {
			$line eq HEAD or return 'line 1 is not "' . HEAD . '"';
		} elsif ($line =~ /^box (-?$number) (.+)/s) {
			push @{ $self->{boxes} }, [$1, $2];
		} elsif ($line =~ /^file (.+)/s) {
			push @{ $self->{files} }, $1;
		} else {
			my $run = run_of($line);
			return "line $at is none of a map of lines, or does not fit those before it" if !$run
				|| $run->{first} <= $last || !$run->{count} || $run->{box} >= @{ $self->{boxes} }
				|| defined $run->{button} && !$run->{box} || $run->{file} >= @{ $self->{files} };
			$last = $run->{first} + $run->{count} - 1;
			push @{ $self->{runs} }, $run;
			$lines ||= defined $run->{clause};
		}
	}
	return 'line 1 is not "' . HEAD . '"' if !$at;
	return $lines && $last != $self->{count} ? "it is of a source of $last lines, and this one has $self->{count}" : '';
}

sub run_of {
	my ($line) = @_;
	my %run = (file => 0, line => 0);
	if ($line =~ /^line ($number) ($number) ($number) ([a-z-]+) ($number) ($number)\z/) {
		@run{qw(first count box clause file line)} = ($1, $2, $3, $4, $5, $6);
	} elsif ($line =~ /^output ($number) ($number) ([a-z-]+) (.+)/s) {
		@run{qw(first count box clause button)} = ($1, 1, $2, $3, $4);
	} elsif ($line =~ /^argument ($number) ($number) ($number) (.+)/s) {
		@run{qw(first count box button)} = ($1, $2, $3, $4);
	} else {
		return undef;
	}
	return \%run;
}

sub one_line {
	my ($text) = @_;
	$text =~ s/[\x00-\x1f\x7f]+/ /g;
	return $text;
}

1;
